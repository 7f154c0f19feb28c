#include "base/thread.h"

#include <pthread.h>
#include <sched.h>

#include <atomic>
#include <exception>
#include <new>

#include "base/memory.h"

namespace tarvik {

struct Thread::State {
  ThreadFunctions functions;
  std::unique_ptr<Task> task;
  MemoryAccount *account = nullptr;
  void *callersHandle = nullptr;
  pthread_t systemHandle{};
  std::exception_ptr failure;
  std::atomic<bool> running{false};
  std::atomic<bool> finished{false};
};

namespace {

void waitFor(const std::atomic<bool> &flag) noexcept {
  while (!flag.load(std::memory_order_acquire)) sched_yield();
}

}  // namespace

Thread::Thread() noexcept = default;
Thread::Thread(Thread &&other) noexcept = default;

Thread &Thread::operator=(Thread &&other) noexcept {
  wait();
  state_ = std::move(other.state_);
  return *this;
}

Thread::~Thread() { wait(); }

Thread::Thread(const ThreadFunctions &functions, std::unique_ptr<Task> task)
    : state_(std::make_unique<State>()) {
  state_->functions = functions;
  state_->task = std::move(task);
  state_->account = currentAccount();
  const int code =
      functions.create
          ? functions.create(&state_->callersHandle, &runState, state_.get(), functions.userData)
          : pthread_create(&state_->systemHandle, nullptr, &runState, state_.get());
  if (code != 0) {
    state_.reset();
    throw std::bad_alloc();
  }
  waitFor(state_->running);
}

void *Thread::runState(void *argument) {
  auto &state = *static_cast<State *>(argument);
  state.running.store(true, std::memory_order_release);
  {
    const AccountScope scope(state.account);
    try {
      state.task->run();
    } catch (...) {
      state.failure = std::current_exception();
    }
  }
  state.finished.store(true, std::memory_order_release);
  return nullptr;
}

void Thread::wait() noexcept {
  if (!state_) return;
  const ThreadFunctions &functions = state_->functions;
  if (!functions.create)
    pthread_join(state_->systemHandle, nullptr);
  else if (functions.join)
    functions.join(state_->callersHandle, functions.userData);
  waitFor(state_->finished);
}

void Thread::join() {
  wait();
  const std::exception_ptr failure = state_ ? state_->failure : nullptr;
  state_.reset();
  if (failure) std::rethrow_exception(failure);
}

}  // namespace tarvik
