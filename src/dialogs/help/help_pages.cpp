#include "dialogs/help/help_pages.h"

#include <QFile>
#include <QXmlStreamReader>

namespace quiverion {
namespace {

// Calls `onElement` at every start tag of a page. Reading stops at the first XML error.
template <class OnElement>
void ReadPage(const QString& path, const OnElement& onElement) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) return;
  QXmlStreamReader xml(&file);
  int lists = 0;
  while (!xml.atEnd()) {
    xml.readNext();
    if (xml.isEndElement() && xml.name() == u"ul") --lists;
    if (!xml.isStartElement()) continue;
    if (xml.name() == u"ul") ++lists;
    onElement(xml, lists);
  }
}

// Only the links inside lists.
std::vector<HelpEntry> ReadLinks(const QString& path) {
  std::vector<HelpEntry> links;
  ReadPage(path, [&links](QXmlStreamReader& xml, int lists) {
    if (lists < 1 || xml.name() != u"a") return;
    const QString target = xml.attributes().value("href").toString();
    links.push_back({xml.readElementText(QXmlStreamReader::IncludeChildElements), target, lists - 1});
  });
  return links;
}

}  // namespace

HelpPages::HelpPages(const QString& directory)
    : contents_(ReadLinks(directory + "/inhalt.html")), keywords_(ReadLinks(directory + "/stichworte.html")) {
  for (const HelpEntry& entry : contents_) {
    if (!entry.target.contains(u'#')) ReadIds(directory, entry.target);
  }
}

void HelpPages::ReadIds(const QString& directory, const QString& page) {
  ReadPage(directory + "/" + page, [&](const QXmlStreamReader& xml, int) {
    const auto id = xml.attributes().value("id");
    if (!id.isEmpty()) targets_.insert(id.toString(), page + "#" + id.toString());
  });
}

}  // namespace quiverion
