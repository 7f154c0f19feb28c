// Threads of parallel algorithms. They are made through the caller's functions when there are
// any, else as threads of the operating system. A thread inherits the memory account of its
// creator; an exception that leaves its body is thrown again where it is joined.
#pragma once

#include <memory>
#include <utility>

namespace tarvik {

// The caller's thread functions; each may be null. create returns nonzero on failure.
struct ThreadFunctions {
  int (*create)(void **thread, void *(*start)(void *), void *argument, void *userData) = nullptr;
  void (*join)(void *thread, void *userData) = nullptr;
  void *userData = nullptr;
};

class Thread {
 public:
  Thread() noexcept;
  // Returns once the new thread runs; throws std::bad_alloc when none can be made.
  template <class Body>
  Thread(const ThreadFunctions &functions, Body body)
      : Thread(functions, std::unique_ptr<Task>(new BodyTask<Body>(std::move(body)))) {}
  Thread(Thread &&other) noexcept;
  Thread &operator=(Thread &&other) noexcept;
  // Waits for the thread; what its body threw is lost unless join() asked for it.
  ~Thread();

  bool joinable() const { return state_ != nullptr; }
  void join();

 private:
  struct State;
  struct Task {
    virtual ~Task() = default;
    virtual void run() = 0;
  };
  template <class Body>
  struct BodyTask final : Task {
    explicit BodyTask(Body given) : body(std::move(given)) {}
    void run() override { body(); }
    Body body;
  };

  Thread(const ThreadFunctions &functions, std::unique_ptr<Task> task);
  static void *runState(void *argument);
  void wait() noexcept;

  std::unique_ptr<State> state_;
};

}  // namespace tarvik
