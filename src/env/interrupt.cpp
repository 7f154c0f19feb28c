#include "env/interrupt.h"

#include <signal.h>
#include <unistd.h>

#include <atomic>

namespace tarvik {

namespace {

std::atomic<Env *> slot{nullptr};
struct sigaction previousAction;

extern "C" void onInterrupt(int signal) {
  constexpr char kText[] = "\nInterrupt request received\n";
  [[maybe_unused]] const auto written = write(STDOUT_FILENO, kText, sizeof kText - 1);
  if (Env *env = slot.load()) env->requestTermination();
  struct sigaction action = {};
  action.sa_handler = SIG_DFL;
  sigaction(signal, &action, nullptr);
}

}  // namespace

void installInterrupt(Env &env) {
  const bool installed = slot.exchange(&env) != nullptr;
  struct sigaction action = {};
  action.sa_handler = onInterrupt;
  sigemptyset(&action.sa_mask);
  sigaction(SIGINT, &action, installed ? nullptr : &previousAction);
}

void restoreInterrupt(Env &env) {
  Env *expected = &env;
  if (slot.compare_exchange_strong(expected, nullptr)) sigaction(SIGINT, &previousAction, nullptr);
}

}  // namespace tarvik
