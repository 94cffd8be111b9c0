#include "cli/card_session.h"

#include "base/text.h"
#include "cli/diagnostics.h"

namespace mirellon::cli {

namespace {

// Message boxes as lines on standard error.
class MessageLines : public base::WindowServices {
 public:
  MessageLines(std::ostream& err, bool quiet) : err_(err), quiet_(quiet) {}

  void ShowMessage(const std::wstring& text, const std::wstring& /*caption*/,
                   base::MessageKind /*kind*/) override {
    if (!quiet_) PrintWarning(err_, base::Utf8FromWide(text));
  }
  std::optional<std::filesystem::path> AskOpenPath(const std::wstring& /*title*/) override {
    return std::nullopt;
  }
  std::optional<std::filesystem::path> AskSavePath(const std::wstring& /*title*/,
                                                   const std::filesystem::path& /*proposal*/) override {
    return std::nullopt;
  }

 private:
  std::ostream& err_;
  bool quiet_;
};

}  // namespace

CardSession::CardSession(Backend wanted, bool quiet, Shell& shell) : shell_(shell) {
  if (wanted == Backend::kCpu) return;
  windows_ = std::make_unique<MessageLines>(shell.err, quiet);
  filter_ = std::make_unique<gpu::GpuFilter>(gpu::MakeGlContext(), windows_.get(),
                                             quiet ? silence_ : shell.err, shell.err);
  if (!filter_->Initialise()) {
    refusal_ = filter_->info().refusal;
    return;
  }
  card_ = std::make_unique<engine::GpuCard>(*filter_);
  agreement_ = engine::TestCardAgreement(*card_);
  if (!agreement_.passed) {
    refusal_ = agreement_.answered ? "its results differ from the processor's" : "it failed in a trial";
    return;
  }
  shell.engine.card = card_.get();
  backend_ = wanted;
}

CardSession::~CardSession() {
  if (card_ != nullptr && shell_.engine.card == card_.get()) shell_.engine.card = nullptr;
}

}  // namespace mirellon::cli
