// The bridge from the events of a mixed-integer search to invocations of the user callback.
#pragma once

#include "callback/callback_context.h"
#include "mip/mip_observer.h"

namespace tarvik {

class MipCallbacks final : public MipObserver {
 public:
  // The context must have a function; bridge is what presolve and the root relaxation report to.
  MipCallbacks(CallbackContext &context, Progress &bridge) : context_(context), bridge_(bridge) {}

  Progress *progress() override { return &bridge_; }
  void onPolling() override;
  void onProgress(const MipProgress &progress) override;
  bool onSolution(const MipProgress &progress, const Vec<double> &x, double objective) override;
  bool wantsNodes() const override { return true; }
  void onNode(const MipProgress &progress, const ObservedNode &node) override;

 private:
  void invoke(int where, const MipProgress &progress, MipCallbackValues &values);

  CallbackContext &context_;
  Progress &bridge_;
  int solutionsTold_ = 0;
};

}  // namespace tarvik
