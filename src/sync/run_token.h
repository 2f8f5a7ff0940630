#pragma once

#include <memory>

namespace thalvorn {

/// Whether the work it was given to still counts. A run that was taken over and a step that took too long go on until
/// their next await; there they find their token over, and stop without writing anything.
class RunToken {
 public:
  RunToken() : over_(std::make_shared<bool>(false)) {}
  /// One that is over whenever `whole` is, and may be over sooner.
  static RunToken partOf(const RunToken& whole) {
    RunToken part;
    part.whole_ = std::make_shared<const RunToken>(whole);
    return part;
  }

  bool isOver() const { return *over_ || (whole_ && whole_->isOver()); }
  void end() { *over_ = true; }

 private:
  std::shared_ptr<bool> over_;
  std::shared_ptr<const RunToken> whole_;
};

}  // namespace thalvorn
