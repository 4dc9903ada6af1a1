#include "app/file_list.h"

#include <QScrollBar>
#include <algorithm>
#include <unordered_set>

#include "dialogs/widgets/qt_text.h"
#include "macro/series_files.h"
#include "messages/failure.h"

namespace quiverion {

int FileListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(names_.size());
}

QVariant FileListModel::data(const QModelIndex& index, int role) const {
  if (role != Qt::DisplayRole || !index.isValid()) return {};
  return ToQt(names_[static_cast<std::size_t>(index.row())]);
}

void FileListModel::SetNames(std::vector<std::string> names) {
  beginResetModel();
  names_ = std::move(names);
  endResetModel();
}

FileList::FileList(QWidget* parent) : QListView(parent), model_(new FileListModel(this)) {
  setModel(model_);
  setUniformItemSizes(true);
  setSelectionMode(ExtendedSelection);
}

void FileList::ShowDirectory(const std::string& directory) {
  all_.clear();
  Attempt([&] { all_ = ListSeriesFiles(*files_, directory); });  // the directory list says what can be said about it
  if (directory == directory_) {
    ShowNames(NamesToShow());
  } else {
    model_->SetNames(NamesToShow());
  }
  directory_ = directory;
}

void FileList::ShowNames(std::vector<std::string> names) {
  const std::vector<std::string> selected = SelectedNames();
  const int scrolled = verticalScrollBar()->value();
  model_->SetNames(std::move(names));
  SelectNames(selected);
  verticalScrollBar()->setValue(scrolled);
}

std::vector<std::string> FileList::NamesToShow() const {
  if (!hides_) return all_;
  const std::vector<bool> isHidden = hides_(all_);
  std::vector<std::string> names;
  for (std::size_t k = 0; k < all_.size(); ++k) {
    if (!isHidden[k]) names.push_back(all_[k]);
  }
  return names;
}

void FileList::HideNames(std::function<std::vector<bool>(const std::vector<std::string>&)> hides) {
  hides_ = std::move(hides);
  UpdateHidden();
}

void FileList::UpdateHidden() {
  std::vector<std::string> names = NamesToShow();
  if (names != model_->Names()) ShowNames(std::move(names));
}

bool FileList::HidesOneOf(const std::vector<std::string>& names) const {
  const std::vector<std::string>& shown = model_->Names();
  std::unordered_set<std::string> hidden(all_.begin(), all_.end());
  for (const std::string& name : shown) hidden.erase(name);
  return std::ranges::any_of(names, [&hidden](const std::string& name) { return hidden.contains(name); });
}

std::string FileList::CurrentName() const {
  const QModelIndex current = currentIndex();
  return current.isValid() ? model_->Names()[static_cast<std::size_t>(current.row())] : std::string();
}

std::vector<std::string> FileList::SelectedNames() const {
  std::vector<std::string> names;
  const std::vector<std::string>& all = model_->Names();
  QItemSelection ranges = selectionModel()->selection();
  std::ranges::sort(ranges, {}, [](const QItemSelectionRange& range) { return range.top(); });
  for (const QItemSelectionRange& range : ranges) {
    names.insert(names.end(), all.begin() + range.top(), all.begin() + range.bottom() + 1);
  }
  return names;
}

void FileList::SelectNames(const std::vector<std::string>& names) {
  const std::unordered_set<std::string> wanted(names.begin(), names.end());
  const std::vector<std::string>& all = model_->Names();
  QItemSelection selection;
  const int count = static_cast<int>(all.size());
  const auto isWanted = [&](int row) { return wanted.contains(all[static_cast<std::size_t>(row)]); };
  for (int row = 0; row < count; ++row) {
    if (!isWanted(row)) continue;
    const int first = row;
    while (row + 1 < count && isWanted(row + 1)) ++row;
    selection.append(QItemSelectionRange(model_->index(first), model_->index(row)));
  }
  selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
}

}  // namespace quiverion
