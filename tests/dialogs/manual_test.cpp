// The manual itself: complete, and every link leads somewhere.
#include <gtest/gtest.h>

#include <QDirIterator>
#include <QFileInfo>
#include <QXmlStreamReader>
#include <map>
#include <set>

#include "dialogs/help/help_pages.h"
#include "dialogs/widgets/qt_text.h"
#include "macro/command_catalogue.h"

namespace quiverion {
namespace {

struct Section {
  QString page;
  QString heading;
  QString text;  // up to the next heading with an id
};

struct Link {
  QString page;
  QString target;
};

// All pages, read once.
class Manual : public testing::Test {
 protected:
  Manual() {
    for (const QString& page : QDir(HELP_PAGES).entryList({"*.html"})) Read(page);
  }

  void Read(const QString& page) {
    QFile file(QDir(HELP_PAGES).filePath(page));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    QXmlStreamReader xml(&file);
    Section* section = nullptr;
    bool inHeading = false;
    pages_.insert(FromQt(page));
    while (!xml.atEnd()) {
      xml.readNext();
      if (xml.isStartElement()) {
        const QString id = xml.attributes().value("id").toString();
        if (!id.isEmpty()) {
          EXPECT_FALSE(sections_.contains(id)) << FromQt(page + "#" + id) << " stands twice";
          inHeading = xml.name().startsWith(u'h');
          if (inHeading) section = &sections_[id];
          sections_[id].page = page;
        }
        for (const char* attribute : {"href", "src"}) {
          const QString target = xml.attributes().value(attribute).toString();
          if (!target.isEmpty()) links_.push_back({page, target});
        }
      }
      if (xml.isEndElement() && xml.name().startsWith(u'h')) inHeading = false;
      if (xml.isCharacters() && section != nullptr) (inHeading ? section->heading : section->text) += xml.text();
    }
    EXPECT_FALSE(xml.hasError()) << FromQt(page + ": " + xml.errorString());
  }

  std::set<std::string> pages_;
  std::map<QString, Section> sections_;  // by id
  std::vector<Link> links_;
};

TEST_F(Manual, EveryLinkLeadsSomewhere) {
  EXPECT_GT(links_.size(), 500u);
  for (const auto& [page, target] : links_) {
    const QString file = target.section(u'#', 0, 0);
    const QString id = target.section(u'#', 1);
    const QString linked = file.isEmpty() ? page : file;
    EXPECT_TRUE(QFile::exists(QDir(HELP_PAGES).filePath(linked))) << FromQt(page + ": " + target);
    if (!id.isEmpty()) {
      EXPECT_TRUE(sections_.contains(id) && sections_[id].page == linked) << FromQt(page + ": " + target);
    }
  }
}

TEST_F(Manual, EveryCommandHasASectionWithItsParametersAndAPlaceInTheContents) {
  QStringList listed;
  const HelpPages help(HELP_PAGES);
  for (const HelpEntry& entry : help.Contents()) listed.append(entry.target.section(u'#', 1));
  for (const CommandRow& row : CommandCatalogue()) {
    if (row.IsMenu()) continue;
    const Section& section = sections_[ToQt(row.constantName)];
    EXPECT_EQ(FromQt(section.heading), row.shortText) << row.constantName;
    EXPECT_TRUE(listed.contains(ToQt(row.constantName))) << row.constantName;
    EXPECT_TRUE(section.text.contains(ToQt(row.longText))) << row.constantName;
    EXPECT_TRUE(section.text.contains(QString::number(row.eventId))) << row.constantName;
    for (const Parameter& parameter : row.parameters) {
      EXPECT_TRUE(section.text.contains(ToQt(parameter.key))) << row.constantName << " " << parameter.key;
      const QString preset = ToQt(parameter.preset).replace(u'-', QChar(0x2212));  // as a minus sign is printed
      EXPECT_TRUE(section.text.contains(preset)) << row.constantName << " " << parameter.key;
    }
  }
}

TEST_F(Manual, ContentsAndIndexReachEverything) {
  const HelpPages help(HELP_PAGES);
  std::set<std::string> reached = {"inhalt.html"};
  for (const HelpEntry& entry : help.Contents()) reached.insert(FromQt(entry.target.section(u'#', 0, 0)));
  EXPECT_EQ(reached, pages_);
  EXPECT_GT(help.Keywords().size(), 150u);
  for (const HelpEntry& keyword : help.Keywords()) EXPECT_FALSE(keyword.text.trimmed().isEmpty());
  // Parameter windows lead to the command whose parameters they ask for.
  const QStringList parameterWindows = {"frmFaultVectors", "frmMirrorOptions", "frmXYTrafo", "frmEditVector"};
  for (const char* layer : {"/dialogs", "/view", "/app"}) {
    QDirIterator forms(QString(WINDOW_FORMS) + layer, {"*.ui"}, QDir::Files, QDirIterator::Subdirectories);
    while (forms.hasNext()) {
      const QString window = QFileInfo(forms.next()).baseName();
      if (window == "frmHelp" || parameterWindows.contains(window)) continue;
      EXPECT_FALSE(help.TargetOf(window).isEmpty()) << FromQt(window);
    }
  }
  for (const char* item : {"mnuOpenMacroList", "mnuSaveMacroList", "mnuEditCollection", "mnuAverage",
                           "mnuStdDeviation",  "mnuAvgUsAndVs",    "mnuAvgUsTimesVs",   "mnuTu",
                           "mnuDissipation",   "mnuShowField",     "mnuShowPreview",    "mnuLastRun",
                           "mnuRunPlan",       "mnuUndo",          "mnuRedo",           "mnuCopyCommands",
                           "mnuPasteCommands", "mnuOpenDirectory", "mnuOpenFolder",     "mnuImportFiles",
                           "mnuExportFields"}) {
    EXPECT_FALSE(help.TargetOf(item).isEmpty()) << item;
  }
}

}  // namespace
}  // namespace quiverion
