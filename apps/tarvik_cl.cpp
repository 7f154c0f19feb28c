// The command-line solver: sets parameters, reads a model, optimizes it. The log on standard
// output is the library's own; errors are one line on standard error and a nonzero exit code.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "tarvik.h"

namespace {

constexpr int kApiType = 6;
constexpr int kFailure = 1;  // the library reported an error
constexpr int kBadUsage = 2;

constexpr char kUsage[] =
    "Usage: tarvik_cl [Param=value ...] model-file\n"
    "\n"
    "Solves the model in a file (.mps, .lp, .opb and relatives, optionally compressed as .gz,\n"
    ".bz2, .zip or .7z) and prints the log. Any parameter may be set, for example\n"
    "\n"
    "  TimeLimit=60            stop after a minute\n"
    "  Method=0                primal simplex (1: dual simplex)\n"
    "  LogFile=run.log         keep the log in a file, too\n"
    "  ResultFile=plan.sol     write the solution (.sol), the basis (.bas), ...\n"
    "\n"
    "Ctrl-C ends a run with the best that is known; a second Ctrl-C kills it.\n"
    "\n"
    "  --help      print this text\n"
    "  --version   print the version\n";

struct EnvDeleter {
  void operator()(TVKenv *env) const { TVKfreeenv(env); }
};
struct ModelDeleter {
  void operator()(TVKmodel *model) const { TVKfreemodel(model); }
};
using EnvPtr = std::unique_ptr<TVKenv, EnvDeleter>;
using ModelPtr = std::unique_ptr<TVKmodel, ModelDeleter>;

struct Setting {
  std::string name, value;
};
struct Arguments {
  std::vector<Setting> settings;
  std::string model;
};

// What the library says about a failure, on one line.
int fail(int code, const char *message, const char *context) {
  std::string text = message && *message ? message : "unknown error";
  for (char &c : text)
    if (c == '\n') c = ' ';
  std::fflush(stdout);
  std::fprintf(stderr, "tarvik_cl: %s: %s (error %d)\n", context, text.c_str(), code);
  return kFailure;
}

int badUsage(const char *message, const char *argument) {
  std::fprintf(stderr, "tarvik_cl: %s%s%s (see tarvik_cl --help)\n", message, *argument ? ": " : "",
               argument);
  return kBadUsage;
}

bool fileExists(const char *name) {
  FILE *file = std::fopen(name, "r");
  if (file) std::fclose(file);
  return file != nullptr;
}

// Settings first, the model last. Returns 0 or an exit code.
int parseArguments(int count, char **values, Arguments &arguments) {
  for (int k = 1; k < count; ++k) {
    const char *argument = values[k];
    const char *equals = std::strchr(argument, '=');
    const bool isLast = k + 1 == count;
    if (argument[0] == '-') return badUsage("unknown option", argument);
    if (isLast && (!equals || fileExists(argument)))
      arguments.model = argument;
    else if (!equals)
      return badUsage("expected Param=value before the model file", argument);
    else if (equals == argument)
      return badUsage("a setting without a name", argument);
    else
      arguments.settings.push_back({std::string(argument, equals), equals + 1});
  }
  if (arguments.model.empty()) return badUsage("no model file given", "");
  return 0;
}

// An environment with the settings made before its start, so that they hold from the first line
// of the log on and win over a settings file.
int startEnvironment(const Arguments &arguments, EnvPtr &env) {
  int major, minor, technical;
  TVKversion(&major, &minor, &technical);
  TVKenv *created = nullptr;
  int code = TVKemptyenvadvinternal(&created, kApiType, major, minor, technical, nullptr, nullptr,
                                    nullptr, nullptr, nullptr, nullptr, nullptr);
  env.reset(created);
  if (code) return fail(code, TVKgeterrormsg(created), "cannot create an environment");
  for (const Setting &setting : arguments.settings) {
    code = TVKsetparam(created, setting.name.c_str(), setting.value.c_str());
    if (code)
      return fail(code, TVKgeterrormsg(created), (setting.name + "=" + setting.value).c_str());
  }
  code = TVKstartenv(created);
  return code ? fail(code, TVKgeterrormsg(created), "cannot start the environment") : 0;
}

int run(const Arguments &arguments) {
  EnvPtr env;
  if (const int exitCode = startEnvironment(arguments, env)) return exitCode;
  TVKmodel *read = nullptr;
  int code = TVKreadmodel(env.get(), arguments.model.c_str(), &read);
  const ModelPtr model(read);
  if (code) return fail(code, TVKgeterrormsg(env.get()), arguments.model.c_str());
  TVKsetsignal(read);
  code = TVKoptimize(read);
  if (code) return fail(code, TVKgetmerrormsg(read), "optimization failed");
  return 0;
}

}  // namespace

int main(int argc, char **argv) {
  const auto given = [&](const char *option, const char *brief) {
    return std::any_of(argv + 1, argv + argc, [&](const char *argument) {
      return !std::strcmp(argument, option) || !std::strcmp(argument, brief);
    });
  };
  if (argc > 1 && given("--help", "-h")) {
    std::fputs(kUsage, stdout);
    return 0;
  }
  if (argc > 1 && given("--version", "-v")) {
    int major, minor, technical;
    TVKversion(&major, &minor, &technical);
    std::printf("Tarvik Optimizer version %d.%d.%d build %s (%s%s)\n", major, minor, technical,
                TVKgitrevision(), TVKplatform(), TVKplatformext());
    return 0;
  }
  Arguments arguments;
  if (const int exitCode = parseArguments(argc, argv, arguments)) return exitCode;
  return run(arguments);
}
