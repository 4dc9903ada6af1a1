#include "app/tool_windows.h"

#include "dialogs/widgets/qt_text.h"

namespace quiverion {

ToolWindows::ToolWindows(const Machine& machine, Session& session, ParameterWindows& dialogs, MacroEditing& editing,
                         MacroHistory& history, Help& help)
    : machine_(machine), session_(session), dialogs_(dialogs), history_(history), help_(help) {
  editing.ShowDrafts([this](const std::optional<DraftCommand>& draft) {
    draftPosition_.reset();
    if (draft) draftPosition_ = draft->position;
    if (preview_) preview_->ShowDraft(draft);
  });
}

ToolWindows::~ToolWindows() {
  delete viewer_;
}

void ToolWindows::ShowField(const std::string& path) {
  if (viewer_ == nullptr) {
    viewer_ = new frmView({machine_.files, machine_.clock, [this] { help_.ShowFor(*viewer_); }});
    viewer_->setAttribute(Qt::WA_DeleteOnClose);
  }
  viewer_->show();
  viewer_->OpenPaths({path});
  viewer_->raise();
  viewer_->activateWindow();
}

void ToolWindows::ShowPreview() {
  if (preview_ == nullptr) {
    preview_ = std::make_unique<frmPreview>(
        PreviewServices{.files = machine_.files,
                        .clock = machine_.clock,
                        .decimalSeparator = machine_.decimalSeparator,
                        .showHelp = [this] { help_.ShowFor(*preview_); },
                        .buffer = [this]() -> const BufferField& { return session_.context.buffer; }});
    connect(preview_.get(), &frmPreview::LimitMoved, this, &ToolWindows::MoveLimit);
    connect(preview_.get(), &frmPreview::LimitReleased, &history_, &MacroHistory::EndMovement);
    preview_->ShowMacro(session_.macro, line_);
  }
  preview_->show();
  preview_->raise();
  preview_->activateWindow();
}

void ToolWindows::MacroChanged(int line) {
  line_ = line;
  if (preview_) preview_->ShowMacro(session_.macro, line);
}

void ToolWindows::FilesChanged(const std::string& directory, std::vector<std::string> names) {
  if (preview_) preview_->ShowFiles(directory, std::move(names));
}

void ToolWindows::StopPreview() {
  isStopped_ = true;
  if (preview_) preview_->Stop();
}

void ToolWindows::Reload() {
  isStopped_ = false;
  if (preview_) preview_->Reload();
}

// A window that asks for the same command gets the text; it shows the change itself. Without one, the macro gets it.
void ToolWindows::MoveLimit(int command, const QString& key, const QString& text) {
  const auto index = static_cast<std::size_t>(command);
  if (draftPosition_) {
    if (*draftPosition_ == index) dialogs_.ShowText(FromQt(key), FromQt(text));
    return;
  }
  if (isStopped_ || index >= session_.macro.size()) return;
  history_.Move(QStringLiteral("Grenze verschieben"), [&] { session_.macro[index].Set(FromQt(key), FromQt(text)); });
  preview_->ShowMacro(session_.macro, command);
  emit MacroEdited();
}

}  // namespace quiverion
