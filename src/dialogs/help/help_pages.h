#pragma once

#include <QHash>
#include <QString>
#include <vector>

namespace quiverion {

/// A line of the table of contents or of the keyword index.
struct HelpEntry {
  QString text;
  QString target;  // "page.html" or "page.html#place"
  int depth = 0;   // 0 for a chapter
};

/// The manual: XHTML pages in one directory. `inhalt.html` links every page, `stichworte.html` has the keywords.
class HelpPages {
 public:
  /// Reads the pages of a directory (":/..." for one in a resource). Pages that cannot be read count as empty.
  explicit HelpPages(const QString& directory);

  const std::vector<HelpEntry>& Contents() const { return contents_; }
  const std::vector<HelpEntry>& Keywords() const { return keywords_; }

  /// The target of a topic: the name of a command, menu item or window, which is the id of a heading. Empty if it is
  /// unknown.
  QString TargetOf(const QString& topic) const { return targets_.value(topic); }

 private:
  void ReadIds(const QString& directory, const QString& page);

  std::vector<HelpEntry> contents_;
  std::vector<HelpEntry> keywords_;
  QHash<QString, QString> targets_;
};

}  // namespace quiverion
