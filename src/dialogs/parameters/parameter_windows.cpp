#include "dialogs/parameters/parameter_windows.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QLabel>
#include <QLayout>

#include "dialogs/parameters/frmEditVector.h"
#include "dialogs/parameters/frmFaultVectors.h"
#include "dialogs/parameters/frmMirrorOptions.h"
#include "dialogs/parameters/frmPrefixPostfix.h"
#include "dialogs/parameters/frmXYTrafo.h"
#include "dialogs/widgets/message_box.h"
#include "dialogs/widgets/native.h"
#include "dialogs/widgets/qt_text.h"
#include "dialogs/widgets/run_modal.h"
#include "platform/files/paths.h"

namespace quiverion {
namespace {

std::unique_ptr<ParameterWindow> MakeWindow(const ParameterEditor& editor, UserInterface& messages, QWidget* parent) {
  switch (editor.kind) {
    case EditorKind::names:
      return std::make_unique<frmPrefixPostfix>(messages, parent);
    case EditorKind::faultVectors:
      return std::make_unique<frmFaultVectors>(messages, parent);
    case EditorKind::mirror:
      return std::make_unique<frmMirrorOptions>(messages, parent);
    case EditorKind::coordinates:
      return std::make_unique<frmXYTrafo>(messages, parent);
    case EditorKind::constVector:
      return std::make_unique<frmEditVector>(messages, ToQt(editor.title), parent);
    default:
      return nullptr;
  }
}

// `path` or the nearest existing directory above it. If the directory is gone, the dialog would take its last part for
// a file name.
QString ExistingDirectory(const std::string& path) {
  QString directory = PathToQt(path);
  for (QString above; !QFileInfo(directory).isDir(); directory = above) {
    above = QFileInfo(directory).path();
    if (above == directory) break;
  }
  return directory;
}

// Qt separates patterns by blanks; they are to be shown separated by ";". So a filter contains its patterns twice: as
// shown, and as Qt needs them, which the dialog hides. "*.*" means every file, also one without a point.
void SetOpenFilters(QFileDialog& dialog, const FileQuestion& question) {
  QStringList filters;
  for (const std::string& filter : question.filters) {
    const QString shown = ToQt(filter);
    filters.append(shown + " " + shown.section(u'(', -1).prepend(u'(').replace(u';', u' ').replace("*.*", "*"));
  }
  dialog.setOption(QFileDialog::HideNameFilterDetails);
  dialog.setNameFilters(filters);
  dialog.selectNameFilter(filters.value(static_cast<qsizetype>(question.selectedFilter)));
}

}  // namespace

std::optional<std::int32_t> ParameterWindows::ChooseCommand() {
  if (commandTree_ == nullptr) commandTree_ = new frmChooseMacroEvent(&parent_);
  return commandTree_->Choose();
}

std::optional<std::string> ParameterWindows::AskText(const TextQuestion& question) {
  QInputDialog box(&parent_);
  box.setWindowTitle(ToQt(question.title));
  box.setLabelText(ToQt(question.prompt));
  box.setTextValue(ToQt(question.preset));
  box.setOkButtonText(QStringLiteral("&Ok"));
  box.setCancelButtonText(QStringLiteral("&Abbrechen"));
  box.layout()->setSizeConstraint(QLayout::SetDefaultConstraint);  // otherwise the minimum size of the layout wins
  box.setMinimumWidth(WidthOfTitle(box));
  box.findChild<QLabel*>()->setWordWrap(true);  // with large letters it can be wider than the screen
  if (question.typed) {
    QObject::connect(&box, &QInputDialog::textValueChanged, &box,
                     [&question](const QString& text) { question.typed(FromQt(text)); });
  }
  if (RunModal(box) != QDialog::Accepted) return std::nullopt;
  return FromQt(box.textValue());
}

std::optional<std::string> ParameterWindows::ChooseFile(const FileQuestion& question) {
  QFileDialog dialog(&parent_, ToQt(question.title), ExistingDirectory(question.directory));
  if (question.kind == FileQuestion::Kind::open) {
    SetOpenFilters(dialog, question);
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setDefaultSuffix(ToQt(question.extension));
  } else {
    QStringList filters;
    for (const std::string& filter : question.filters) filters.append(ToQt(filter));
    SetSaveFilters(dialog, filters);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setOption(QFileDialog::DontConfirmOverwrite);
  }
  const QFontMetrics letters = dialog.fontMetrics();  // its own size does not grow with them
  dialog.resize(dialog.sizeHint().expandedTo({100 * letters.averageCharWidth(), 28 * letters.lineSpacing()}));
  if (!question.fileName.empty()) dialog.selectFile(PathToQt(question.fileName));
  if (RunModal(dialog) != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
  const std::string path = PathFromQt(dialog.selectedFiles().front());
  const bool isComplete = question.kind == FileQuestion::Kind::open || question.extension.empty() ||
                          FileNameOf(path).find('.') != std::string_view::npos;
  return isComplete ? path : path + "." + question.extension;
}

bool ParameterWindows::EditInWindow(const CommandRow& command, MacroEvent& event,
                                    const std::function<void(const MacroEvent&)>& draft) {
  const auto window = MakeWindow(command.editor, messages_, &parent_);
  if (!window) return false;
  window->Load(event);
  if (draft) window->ReportChanges([&] { draft(window->Draft(event)); });
  open_ = window.get();
  if (RunModal(*window) != QDialog::Accepted) return false;
  window->Store(event);
  return true;
}

void ParameterWindows::ShowText(std::string_view key, const std::string& text) {
  if (open_) open_->ShowText(key, text);
}

}  // namespace quiverion
