#include "opt/background_solve.h"

#include <exception>
#include <memory>
#include <optional>
#include <utility>

#include "base/thread.h"
#include "opt/optimize.h"
#include "opt/result_file.h"
#include "opt/running_scope.h"

namespace tarvik {

namespace {

class SolveThread final : public BackgroundSolve {
 public:
  // Marked as running here, so that a request to terminate that comes right after the start is
  // not lost.
  explicit SolveThread(Model &model) : model_(model) {
    running_.emplace(model);
    thread_ = Thread(model.env().threadFunctions(), [this] { run(); });
  }
  ~SolveThread() override {
    if (!thread_.joinable()) return;
    model_.env().requestTermination();
  }

  void wait() override {
    if (thread_.joinable()) thread_.join();
    if (failure_) std::rethrow_exception(std::exchange(failure_, nullptr));
  }

 private:
  void run() noexcept {
    try {
      const AccountScope account(&model_.env().account());
      solveRunning(model_);
      writeResultFile(model_);
    } catch (...) {
      failure_ = std::current_exception();
    }
    running_.reset();
  }

  Model &model_;
  std::optional<RunningScope> running_;
  std::exception_ptr failure_;
  Thread thread_;  // last, so that it is joined before what it uses goes
};

}  // namespace

void startBackgroundSolve(Model &model) {
  model.requireIdle();
  model.background.reset();
  model.background = std::make_unique<SolveThread>(model);
}

void syncBackgroundSolve(Model &model) {
  // Its failure is reported once.
  const std::unique_ptr<BackgroundSolve> background = std::move(model.background);
  if (background) background->wait();
}

}  // namespace tarvik
