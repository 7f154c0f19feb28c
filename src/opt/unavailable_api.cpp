// Functions of the interface that this version does not provide: each checks its handle and
// answers 10024 with a message that says so, and nothing else.
#include "model/model_call.h"

namespace {

[[noreturn]] void unavailable(const char *name) {
  throw tarvik::Error(TVK_ERROR_NOT_SUPPORTED, "%s is not available in this version", name);
}

}  // namespace

// Weak, so that the real function wins as soon as it exists.
#define TVK_WEAK __attribute__((weak))

extern "C" {

TVK_WEAK int TVKemptyenv(TVKenv **) { return TVK_ERROR_NOT_SUPPORTED; }
TVK_WEAK int TVKemptyenvadv(TVKenv **, TVKallocfn, TVKzeroallocfn, TVKreallocfn, TVKfreefn, TVKthreadcreatefn, TVKthreadjoinfn, void *) { return TVK_ERROR_NOT_SUPPORTED; }
TVK_WEAK int TVKemptyenvadvinternal(TVKenv **, int, int, int, int, TVKallocfn, TVKzeroallocfn, TVKreallocfn, TVKfreefn, TVKthreadcreatefn, TVKthreadjoinfn, void *) { return TVK_ERROR_NOT_SUPPORTED; }
TVK_WEAK int TVKloadenv(TVKenv **, const char *) { return TVK_ERROR_NOT_SUPPORTED; }
TVK_WEAK int TVKloadenvadv(TVKenv **, const char *, int, int, int, int, const char *, const char *, const char *, const char *, int, int, const char *, const char *, TVKcallback, void *, TVKlogcallback, void *) { return TVK_ERROR_NOT_SUPPORTED; }
TVK_WEAK int TVKstartenv(TVKenv *env) {
  return tarvik::envCall(env, nullptr, [](tarvik::Env &) { unavailable("TVKstartenv"); });
}
TVK_WEAK int TVKfreeenv(TVKenv *env) {
  return tarvik::envCall(env, nullptr, [](tarvik::Env &) { unavailable("TVKfreeenv"); });
}
TVK_WEAK TVKenv *TVKgetenv(TVKmodel *model) { return nullptr; }
TVK_WEAK TVKenv *TVKgetconcurrentenv(TVKmodel *model, int) { return nullptr; }
TVK_WEAK void TVKdiscardconcurrentenvs(TVKmodel *model) {}
TVK_WEAK TVKenv *TVKgetmultiobjenv(TVKmodel *model, int) { return nullptr; }
TVK_WEAK void TVKdiscardmultiobjenvs(TVKmodel *model) {}
TVK_WEAK TVKenv *TVKgettuneenv(TVKenv *env, int) { return nullptr; }
TVK_WEAK void TVKdiscardtuneenvs(TVKenv *env) {}
TVK_WEAK int TVKcopyparams(TVKenv *, TVKenv *) { return TVK_ERROR_NOT_SUPPORTED; }
TVK_WEAK int TVKterminate(TVKmodel *model) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKterminate"); });
}
TVK_WEAK int TVKsetsignal(TVKmodel *model) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKsetsignal"); });
}
TVK_WEAK int TVKfree(void *) { return TVK_ERROR_NOT_SUPPORTED; }
TVK_WEAK int TVKsetintparam(TVKenv *env, const char *, int) {
  return tarvik::envCall(env, nullptr, [](tarvik::Env &) { unavailable("TVKsetintparam"); });
}
TVK_WEAK int TVKsetdblparam(TVKenv *env, const char *, double) {
  return tarvik::envCall(env, nullptr, [](tarvik::Env &) { unavailable("TVKsetdblparam"); });
}
TVK_WEAK int TVKsetstrparam(TVKenv *env, const char *, const char *) {
  return tarvik::envCall(env, nullptr, [](tarvik::Env &) { unavailable("TVKsetstrparam"); });
}
TVK_WEAK int TVKsetparam(TVKenv *env, const char *, const char *) {
  return tarvik::envCall(env, nullptr, [](tarvik::Env &) { unavailable("TVKsetparam"); });
}
TVK_WEAK int TVKgetintparam(TVKenv *env, const char *, int *) {
  return tarvik::envCall(env, nullptr, [](tarvik::Env &) { unavailable("TVKgetintparam"); });
}
TVK_WEAK int TVKgetdblparam(TVKenv *env, const char *, double *) {
  return tarvik::envCall(env, nullptr, [](tarvik::Env &) { unavailable("TVKgetdblparam"); });
}
TVK_WEAK int TVKgetstrparam(TVKenv *env, const char *, char *) {
  return tarvik::envCall(env, nullptr, [](tarvik::Env &) { unavailable("TVKgetstrparam"); });
}
TVK_WEAK int TVKgetlongstrparam(TVKenv *env, const char *, char *, int, int *) {
  return tarvik::envCall(env, nullptr, [](tarvik::Env &) { unavailable("TVKgetlongstrparam"); });
}
TVK_WEAK int TVKgetparamtype(TVKenv *env, const char *) {
  return tarvik::envCall(env, nullptr, [](tarvik::Env &) { unavailable("TVKgetparamtype"); });
}
TVK_WEAK int TVKgetintparaminfo(TVKenv *env, const char *, int *, int *, int *, int *) {
  return tarvik::envCall(env, nullptr, [](tarvik::Env &) { unavailable("TVKgetintparaminfo"); });
}
TVK_WEAK int TVKgetdblparaminfo(TVKenv *env, const char *, double *, double *, double *, double *) {
  return tarvik::envCall(env, nullptr, [](tarvik::Env &) { unavailable("TVKgetdblparaminfo"); });
}
TVK_WEAK int TVKgetstrparaminfo(TVKenv *env, const char *, char *, char *) {
  return tarvik::envCall(env, nullptr, [](tarvik::Env &) { unavailable("TVKgetstrparaminfo"); });
}
TVK_WEAK int TVKgetparamflags(TVKenv *env, const char *, unsigned int *) {
  return tarvik::envCall(env, nullptr, [](tarvik::Env &) { unavailable("TVKgetparamflags"); });
}
TVK_WEAK int TVKgetnumparams(TVKenv *env) {
  return tarvik::envCall(env, nullptr, [](tarvik::Env &) { unavailable("TVKgetnumparams"); });
}
TVK_WEAK int TVKgetparamname(TVKenv *env, int, char **) {
  return tarvik::envCall(env, nullptr, [](tarvik::Env &) { unavailable("TVKgetparamname"); });
}
TVK_WEAK int TVKresetparams(TVKenv *env) {
  return tarvik::envCall(env, nullptr, [](tarvik::Env &) { unavailable("TVKresetparams"); });
}
TVK_WEAK int TVKwriteparams(TVKenv *env, const char *) {
  return tarvik::envCall(env, nullptr, [](tarvik::Env &) { unavailable("TVKwriteparams"); });
}
TVK_WEAK int TVKreadparams(TVKenv *env, const char *) {
  return tarvik::envCall(env, nullptr, [](tarvik::Env &) { unavailable("TVKreadparams"); });
}
TVK_WEAK int TVKreadtunebasesettings(TVKenv *env, const char *) {
  return tarvik::envCall(env, nullptr, [](tarvik::Env &) { unavailable("TVKreadtunebasesettings"); });
}
TVK_WEAK const char *TVKgeterrormsg(TVKenv *env) { return ""; }
TVK_WEAK const char *TVKgetmerrormsg(TVKmodel *model) { return ""; }
TVK_WEAK void TVKmsg(TVKenv *env, const char *) {}
TVK_WEAK int TVKsetlogcallbackfunc(TVKmodel *model, TVKlogcallback, void *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKsetlogcallbackfunc"); });
}
TVK_WEAK int TVKsetlogcallbackfuncenv(TVKenv *env, TVKlogcallback, void *) {
  return tarvik::envCall(env, nullptr, [](tarvik::Env &) { unavailable("TVKsetlogcallbackfuncenv"); });
}
TVK_WEAK int TVKgetlogcallbackfuncenv(TVKenv *env, TVKlogcallback *, void **) {
  return tarvik::envCall(env, nullptr, [](tarvik::Env &) { unavailable("TVKgetlogcallbackfuncenv"); });
}
TVK_WEAK const char *TVKplatform() { return ""; }
TVK_WEAK const char *TVKplatformext() { return ""; }
TVK_WEAK const char *TVKgitrevision() { return ""; }
TVK_WEAK int TVKgetcpu(char *) { return TVK_ERROR_NOT_SUPPORTED; }
TVK_WEAK int TVKgetdistro(char *) { return TVK_ERROR_NOT_SUPPORTED; }
TVK_WEAK int TVKgetcores() { return TVK_ERROR_NOT_SUPPORTED; }
TVK_WEAK int TVKissamestring(const char *, const char *, int) { return TVK_ERROR_NOT_SUPPORTED; }
TVK_WEAK int TVKparsecsv(char *, char ***, int *, int *) { return TVK_ERROR_NOT_SUPPORTED; }
TVK_WEAK void TVKsortIDi(int, int *, double *) {}
TVK_WEAK double TVKclean2(int *, int *, double *) { return 0; }
TVK_WEAK double TVKclean3(int *, int *, int *, double *) { return 0; }
TVK_WEAK int TVKcheckmodel(TVKmodel *model) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKcheckmodel"); });
}
TVK_WEAK int TVKnewmodel(TVKenv *env, TVKmodel **, const char *, int, const double *, const double *, const double *, const char *, const char *const *) {
  return tarvik::envCall(env, nullptr, [](tarvik::Env &) { unavailable("TVKnewmodel"); });
}
TVK_WEAK int TVKloadmodel(TVKenv *env, TVKmodel **, const char *, int, int, int, double, const double *, const char *, const double *, const int *, const int *, const int *, const double *, const double *, const double *, const char *, const char *const *, const char *const *) {
  return tarvik::envCall(env, nullptr, [](tarvik::Env &) { unavailable("TVKloadmodel"); });
}
TVK_WEAK int TVKXloadmodel(TVKenv *env, TVKmodel **, const char *, int, int, int, double, const double *, const char *, const double *, const size_t *, const int *, const int *, const double *, const double *, const double *, const char *, const char *const *, const char *const *) {
  return tarvik::envCall(env, nullptr, [](tarvik::Env &) { unavailable("TVKXloadmodel"); });
}
TVK_WEAK int TVKfreemodel(TVKmodel *model) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKfreemodel"); });
}
TVK_WEAK int TVKreset(TVKmodel *model, int) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKreset"); });
}
TVK_WEAK int TVKresetmodel(TVKmodel *model) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKresetmodel"); });
}
TVK_WEAK int TVKupdatemodel(TVKmodel *model) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKupdatemodel"); });
}
TVK_WEAK int TVKaddvar(TVKmodel *model, int, const int *, const double *, double, double, double, char, const char *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKaddvar"); });
}
TVK_WEAK int TVKaddvars(TVKmodel *model, int, int, const int *, const int *, const double *, const double *, const double *, const double *, const char *, const char *const *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKaddvars"); });
}
TVK_WEAK int TVKXaddvars(TVKmodel *model, int, size_t, const size_t *, const int *, const double *, const double *, const double *, const double *, const char *, const char *const *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKXaddvars"); });
}
TVK_WEAK int TVKaddconstr(TVKmodel *model, int, const int *, const double *, char, double, const char *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKaddconstr"); });
}
TVK_WEAK int TVKaddconstrs(TVKmodel *model, int, int, const int *, const int *, const double *, const char *, const double *, const char *const *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKaddconstrs"); });
}
TVK_WEAK int TVKXaddconstrs(TVKmodel *model, int, size_t, const size_t *, const int *, const double *, const char *, const double *, const char *const *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKXaddconstrs"); });
}
TVK_WEAK int TVKaddrangeconstr(TVKmodel *model, int, const int *, const double *, double, double, const char *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKaddrangeconstr"); });
}
TVK_WEAK int TVKaddrangeconstrs(TVKmodel *model, int, int, const int *, const int *, const double *, const double *, const double *, const char *const *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKaddrangeconstrs"); });
}
TVK_WEAK int TVKXaddrangeconstrs(TVKmodel *model, int, size_t, const size_t *, const int *, const double *, const double *, const double *, const char *const *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKXaddrangeconstrs"); });
}
TVK_WEAK int TVKchgcoeffs(TVKmodel *model, int, const int *, const int *, const double *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKchgcoeffs"); });
}
TVK_WEAK int TVKXchgcoeffs(TVKmodel *model, size_t, const int *, const int *, const double *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKXchgcoeffs"); });
}
TVK_WEAK int TVKdelvars(TVKmodel *model, int, const int *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKdelvars"); });
}
TVK_WEAK int TVKdelconstrs(TVKmodel *model, int, const int *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKdelconstrs"); });
}
TVK_WEAK int TVKaddqpterms(TVKmodel *model, int, const int *, const int *, const double *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKaddqpterms"); });
}
TVK_WEAK int TVKdelq(TVKmodel *model) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKdelq"); });
}
TVK_WEAK int TVKaddqconstr(TVKmodel *model, int, const int *, const double *, int, const int *, const int *, const double *, char, double, const char *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKaddqconstr"); });
}
TVK_WEAK int TVKdelqconstrs(TVKmodel *model, int, const int *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKdelqconstrs"); });
}
TVK_WEAK int TVKaddcone(TVKmodel *model, int, const int *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKaddcone"); });
}
TVK_WEAK int TVKaddsos(TVKmodel *model, int, int, const int *, const int *, const int *, const double *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKaddsos"); });
}
TVK_WEAK int TVKdelsos(TVKmodel *model, int, const int *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKdelsos"); });
}
TVK_WEAK int TVKaddgenconstrMax(TVKmodel *model, const char *, int, int, const int *, double) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKaddgenconstrMax"); });
}
TVK_WEAK int TVKaddgenconstrMin(TVKmodel *model, const char *, int, int, const int *, double) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKaddgenconstrMin"); });
}
TVK_WEAK int TVKaddgenconstrAbs(TVKmodel *model, const char *, int, int) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKaddgenconstrAbs"); });
}
TVK_WEAK int TVKaddgenconstrAnd(TVKmodel *model, const char *, int, int, const int *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKaddgenconstrAnd"); });
}
TVK_WEAK int TVKaddgenconstrOr(TVKmodel *model, const char *, int, int, const int *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKaddgenconstrOr"); });
}
TVK_WEAK int TVKaddgenconstrNorm(TVKmodel *model, const char *, int, int, const int *, double) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKaddgenconstrNorm"); });
}
TVK_WEAK int TVKaddgenconstrIndicator(TVKmodel *model, const char *, int, int, int, const int *, const double *, char, double) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKaddgenconstrIndicator"); });
}
TVK_WEAK int TVKaddgenconstrPWL(TVKmodel *model, const char *, int, int, int, const double *, const double *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKaddgenconstrPWL"); });
}
TVK_WEAK int TVKaddgenconstrPoly(TVKmodel *model, const char *, int, int, int, const double *, const char *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKaddgenconstrPoly"); });
}
TVK_WEAK int TVKaddgenconstrExp(TVKmodel *model, const char *, int, int, const char *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKaddgenconstrExp"); });
}
TVK_WEAK int TVKaddgenconstrLog(TVKmodel *model, const char *, int, int, const char *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKaddgenconstrLog"); });
}
TVK_WEAK int TVKaddgenconstrSin(TVKmodel *model, const char *, int, int, const char *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKaddgenconstrSin"); });
}
TVK_WEAK int TVKaddgenconstrCos(TVKmodel *model, const char *, int, int, const char *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKaddgenconstrCos"); });
}
TVK_WEAK int TVKaddgenconstrTan(TVKmodel *model, const char *, int, int, const char *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKaddgenconstrTan"); });
}
TVK_WEAK int TVKaddgenconstrLogistic(TVKmodel *model, const char *, int, int, const char *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKaddgenconstrLogistic"); });
}
TVK_WEAK int TVKaddgenconstrExpA(TVKmodel *model, const char *, int, int, double, const char *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKaddgenconstrExpA"); });
}
TVK_WEAK int TVKaddgenconstrLogA(TVKmodel *model, const char *, int, int, double, const char *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKaddgenconstrLogA"); });
}
TVK_WEAK int TVKaddgenconstrPow(TVKmodel *model, const char *, int, int, double, const char *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKaddgenconstrPow"); });
}
TVK_WEAK int TVKdelgenconstrs(TVKmodel *model, int, const int *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKdelgenconstrs"); });
}
TVK_WEAK int TVKgetvarbyname(TVKmodel *model, const char *, int *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetvarbyname"); });
}
TVK_WEAK int TVKgetconstrbyname(TVKmodel *model, const char *, int *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetconstrbyname"); });
}
TVK_WEAK int TVKgetqconstrbyname(TVKmodel *model, const char *, int *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetqconstrbyname"); });
}
TVK_WEAK int TVKsetobjective(TVKmodel *model, int, double, int, const int *, const double *, int, const int *, const int *, const double *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKsetobjective"); });
}
TVK_WEAK int TVKsetobjectiven(TVKmodel *model, int, int, double, double, double, const char *, double, int, const int *, const double *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKsetobjectiven"); });
}
TVK_WEAK int TVKsetpwlobj(TVKmodel *model, int, int, const double *, const double *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKsetpwlobj"); });
}
TVK_WEAK int TVKgetintattr(TVKmodel *model, const char *, int *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetintattr"); });
}
TVK_WEAK int TVKsetintattr(TVKmodel *model, const char *, int) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKsetintattr"); });
}
TVK_WEAK int TVKgetdblattr(TVKmodel *model, const char *, double *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetdblattr"); });
}
TVK_WEAK int TVKsetdblattr(TVKmodel *model, const char *, double) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKsetdblattr"); });
}
TVK_WEAK int TVKgetstrattr(TVKmodel *model, const char *, char **) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetstrattr"); });
}
TVK_WEAK int TVKsetstrattr(TVKmodel *model, const char *, const char *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKsetstrattr"); });
}
TVK_WEAK int TVKgetintattrelement(TVKmodel *model, const char *, int, int *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetintattrelement"); });
}
TVK_WEAK int TVKsetintattrelement(TVKmodel *model, const char *, int, int) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKsetintattrelement"); });
}
TVK_WEAK int TVKgetcharattrelement(TVKmodel *model, const char *, int, char *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetcharattrelement"); });
}
TVK_WEAK int TVKsetcharattrelement(TVKmodel *model, const char *, int, char) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKsetcharattrelement"); });
}
TVK_WEAK int TVKgetdblattrelement(TVKmodel *model, const char *, int, double *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetdblattrelement"); });
}
TVK_WEAK int TVKsetdblattrelement(TVKmodel *model, const char *, int, double) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKsetdblattrelement"); });
}
TVK_WEAK int TVKgetstrattrelement(TVKmodel *model, const char *, int, char **) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetstrattrelement"); });
}
TVK_WEAK int TVKsetstrattrelement(TVKmodel *model, const char *, int, const char *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKsetstrattrelement"); });
}
TVK_WEAK int TVKgetintattrarray(TVKmodel *model, const char *, int, int, int *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetintattrarray"); });
}
TVK_WEAK int TVKsetintattrarray(TVKmodel *model, const char *, int, int, const int *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKsetintattrarray"); });
}
TVK_WEAK int TVKgetcharattrarray(TVKmodel *model, const char *, int, int, char *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetcharattrarray"); });
}
TVK_WEAK int TVKsetcharattrarray(TVKmodel *model, const char *, int, int, const char *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKsetcharattrarray"); });
}
TVK_WEAK int TVKgetdblattrarray(TVKmodel *model, const char *, int, int, double *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetdblattrarray"); });
}
TVK_WEAK int TVKsetdblattrarray(TVKmodel *model, const char *, int, int, const double *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKsetdblattrarray"); });
}
TVK_WEAK int TVKgetstrattrarray(TVKmodel *model, const char *, int, int, char **) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetstrattrarray"); });
}
TVK_WEAK int TVKsetstrattrarray(TVKmodel *model, const char *, int, int, const char *const *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKsetstrattrarray"); });
}
TVK_WEAK int TVKgetintattrlist(TVKmodel *model, const char *, int, const int *, int *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetintattrlist"); });
}
TVK_WEAK int TVKsetintattrlist(TVKmodel *model, const char *, int, const int *, const int *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKsetintattrlist"); });
}
TVK_WEAK int TVKgetcharattrlist(TVKmodel *model, const char *, int, const int *, char *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetcharattrlist"); });
}
TVK_WEAK int TVKsetcharattrlist(TVKmodel *model, const char *, int, const int *, const char *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKsetcharattrlist"); });
}
TVK_WEAK int TVKgetdblattrlist(TVKmodel *model, const char *, int, const int *, double *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetdblattrlist"); });
}
TVK_WEAK int TVKsetdblattrlist(TVKmodel *model, const char *, int, const int *, const double *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKsetdblattrlist"); });
}
TVK_WEAK int TVKgetstrattrlist(TVKmodel *model, const char *, int, const int *, char **) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetstrattrlist"); });
}
TVK_WEAK int TVKsetstrattrlist(TVKmodel *model, const char *, int, const int *, const char *const *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKsetstrattrlist"); });
}
TVK_WEAK int TVKgetattrinfo(TVKmodel *model, const char *, int *, int *, int *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetattrinfo"); });
}
TVK_WEAK int TVKisattravailable(TVKmodel *model, const char *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKisattravailable"); });
}
TVK_WEAK int TVKgetnumattributes(TVKmodel *model) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetnumattributes"); });
}
TVK_WEAK int TVKgetattrname(TVKmodel *model, int, char **) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetattrname"); });
}
TVK_WEAK int TVKgetcoeff(TVKmodel *model, int, int, double *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetcoeff"); });
}
TVK_WEAK int TVKgetvars(TVKmodel *model, int *, int *, int *, double *, int, int) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetvars"); });
}
TVK_WEAK int TVKXgetvars(TVKmodel *model, size_t *, size_t *, int *, double *, int, int) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKXgetvars"); });
}
TVK_WEAK int TVKgetconstrs(TVKmodel *model, int *, int *, int *, double *, int, int) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetconstrs"); });
}
TVK_WEAK int TVKXgetconstrs(TVKmodel *model, size_t *, size_t *, int *, double *, int, int) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKXgetconstrs"); });
}
TVK_WEAK int TVKgetsos(TVKmodel *model, int *, int *, int *, int *, double *, int, int) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetsos"); });
}
TVK_WEAK int TVKgetq(TVKmodel *model, int *, int *, int *, double *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetq"); });
}
TVK_WEAK int TVKgetqconstr(TVKmodel *model, int, int *, int *, double *, int *, int *, int *, double *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetqconstr"); });
}
TVK_WEAK int TVKgetpwlobj(TVKmodel *model, int, int *, double *, double *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetpwlobj"); });
}
TVK_WEAK int TVKgetgenconstrMax(TVKmodel *model, int, int *, int *, int *, double *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetgenconstrMax"); });
}
TVK_WEAK int TVKgetgenconstrMin(TVKmodel *model, int, int *, int *, int *, double *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetgenconstrMin"); });
}
TVK_WEAK int TVKgetgenconstrAbs(TVKmodel *model, int, int *, int *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetgenconstrAbs"); });
}
TVK_WEAK int TVKgetgenconstrAnd(TVKmodel *model, int, int *, int *, int *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetgenconstrAnd"); });
}
TVK_WEAK int TVKgetgenconstrOr(TVKmodel *model, int, int *, int *, int *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetgenconstrOr"); });
}
TVK_WEAK int TVKgetgenconstrNorm(TVKmodel *model, int, int *, int *, int *, double *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetgenconstrNorm"); });
}
TVK_WEAK int TVKgetgenconstrIndicator(TVKmodel *model, int, int *, int *, int *, int *, double *, char *, double *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetgenconstrIndicator"); });
}
TVK_WEAK int TVKgetgenconstrPWL(TVKmodel *model, int, int *, int *, int *, double *, double *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetgenconstrPWL"); });
}
TVK_WEAK int TVKgetgenconstrPoly(TVKmodel *model, int, int *, int *, int *, double *, char **) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetgenconstrPoly"); });
}
TVK_WEAK int TVKgetgenconstrExp(TVKmodel *model, int, int *, int *, char **) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetgenconstrExp"); });
}
TVK_WEAK int TVKgetgenconstrLog(TVKmodel *model, int, int *, int *, char **) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetgenconstrLog"); });
}
TVK_WEAK int TVKgetgenconstrSin(TVKmodel *model, int, int *, int *, char **) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetgenconstrSin"); });
}
TVK_WEAK int TVKgetgenconstrCos(TVKmodel *model, int, int *, int *, char **) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetgenconstrCos"); });
}
TVK_WEAK int TVKgetgenconstrTan(TVKmodel *model, int, int *, int *, char **) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetgenconstrTan"); });
}
TVK_WEAK int TVKgetgenconstrLogistic(TVKmodel *model, int, int *, int *, char **) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetgenconstrLogistic"); });
}
TVK_WEAK int TVKgetgenconstrExpA(TVKmodel *model, int, int *, int *, double *, char **) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetgenconstrExpA"); });
}
TVK_WEAK int TVKgetgenconstrLogA(TVKmodel *model, int, int *, int *, double *, char **) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetgenconstrLogA"); });
}
TVK_WEAK int TVKgetgenconstrPow(TVKmodel *model, int, int *, int *, double *, char **) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetgenconstrPow"); });
}
TVK_WEAK int TVKfiletype(const char *) { return TVK_ERROR_NOT_SUPPORTED; }
TVK_WEAK int TVKismodelfile(const char *) { return TVK_ERROR_NOT_SUPPORTED; }
TVK_WEAK int TVKisattrfile(const char *) { return TVK_ERROR_NOT_SUPPORTED; }
TVK_WEAK int TVKreadmodel(TVKenv *env, const char *, TVKmodel **) {
  return tarvik::envCall(env, nullptr, [](tarvik::Env &) { unavailable("TVKreadmodel"); });
}
TVK_WEAK int TVKread(TVKmodel *model, const char *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKread"); });
}
TVK_WEAK int TVKwrite(TVKmodel *model, const char *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKwrite"); });
}
TVK_WEAK int TVKgetjsonsolution(TVKmodel *model, char **) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetjsonsolution"); });
}
TVK_WEAK int TVKloadjson(TVKenv *env, const char *, char **) {
  return tarvik::envCall(env, nullptr, [](tarvik::Env &) { unavailable("TVKloadjson"); });
}
TVK_WEAK int TVKoptimize(TVKmodel *model) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKoptimize"); });
}
TVK_WEAK int TVKoptimizeasync(TVKmodel *model) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKoptimizeasync"); });
}
TVK_WEAK int TVKsync(TVKmodel *model) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKsync"); });
}
TVK_WEAK int TVKresultmodel(TVKmodel *model, const char *, TVKmodel **) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKresultmodel"); });
}
TVK_WEAK int TVKrelaxmodel(TVKmodel *model, TVKmodel **) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKrelaxmodel"); });
}
TVK_WEAK int TVKfeasibility(TVKmodel *model, TVKmodel **) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKfeasibility"); });
}
TVK_WEAK int TVKlinearizemodel(TVKmodel *model, TVKmodel **) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKlinearizemodel"); });
}
TVK_WEAK int TVKfixmodel(TVKmodel *model, TVKmodel **) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKfixmodel"); });
}
TVK_WEAK TVKmodel *TVKfixedmodel(TVKmodel *model) { return nullptr; }
TVK_WEAK int TVKconverttofixed(TVKmodel *model) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKconverttofixed"); });
}
TVK_WEAK int TVKdualmodel(TVKmodel *model, TVKmodel **) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKdualmodel"); });
}
TVK_WEAK int TVKsinglescenariomodel(TVKmodel *model, TVKmodel **) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKsinglescenariomodel"); });
}
TVK_WEAK int TVKpresolvemodel(TVKmodel *model, TVKmodel **) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKpresolvemodel"); });
}
TVK_WEAK TVKmodel *TVKcopymodel(TVKmodel *model) { return nullptr; }
TVK_WEAK int TVKcopymodeltoenv(TVKmodel *model, TVKenv *, TVKmodel **) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKcopymodeltoenv"); });
}
TVK_WEAK int TVKiismodel(TVKmodel *model, TVKmodel **) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKiismodel"); });
}
TVK_WEAK int TVKfeasrelax(TVKmodel *model, int, int, const double *, const double *, const double *, double *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKfeasrelax"); });
}
TVK_WEAK int TVKFSolve(TVKmodel *model, const TVKsvec *, TVKsvec *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKFSolve"); });
}
TVK_WEAK int TVKBSolve(TVKmodel *model, const TVKsvec *, TVKsvec *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKBSolve"); });
}
TVK_WEAK int TVKBinvColj(TVKmodel *model, int, TVKsvec *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKBinvColj"); });
}
TVK_WEAK int TVKBinvj(TVKmodel *model, int, TVKsvec *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKBinvj"); });
}
TVK_WEAK int TVKBinvi(TVKmodel *model, int, TVKsvec *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKBinvi"); });
}
TVK_WEAK int TVKBinvRowi(TVKmodel *model, int, TVKsvec *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKBinvRowi"); });
}
TVK_WEAK int TVKgetBasisHead(TVKmodel *model, int *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetBasisHead"); });
}
TVK_WEAK int TVKsingularvectors(TVKmodel *model, TVKsvec **, TVKsvec **) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKsingularvectors"); });
}
TVK_WEAK int TVKstrongbranch(TVKmodel *model, int, const int *, double *, double *, int *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKstrongbranch"); });
}
TVK_WEAK int TVKcomputeIIS(TVKmodel *model) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKcomputeIIS"); });
}
TVK_WEAK int TVKsetcallbackfunc(TVKmodel *model, TVKcallback, void *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKsetcallbackfunc"); });
}
TVK_WEAK int TVKsetcallbackfuncenv(TVKenv *env, TVKcallback, void *) {
  return tarvik::envCall(env, nullptr, [](tarvik::Env &) { unavailable("TVKsetcallbackfuncenv"); });
}
TVK_WEAK int TVKgetcallbackfunc(TVKmodel *model, TVKcallback *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgetcallbackfunc"); });
}
TVK_WEAK int TVKgetcallbackfuncenv(TVKenv *env, TVKcallback *) {
  return tarvik::envCall(env, nullptr, [](tarvik::Env &) { unavailable("TVKgetcallbackfuncenv"); });
}
TVK_WEAK int TVKgetcbwhatinfo(void *, int, int *, int *) { return TVK_ERROR_NOT_SUPPORTED; }
TVK_WEAK int TVKcbget(void *, int, int, void *) { return TVK_ERROR_NOT_SUPPORTED; }
TVK_WEAK int TVKcbsolution(void *, const double *, double *) { return TVK_ERROR_NOT_SUPPORTED; }
TVK_WEAK int TVKcbcut(void *, int, const int *, const double *, char, double) { return TVK_ERROR_NOT_SUPPORTED; }
TVK_WEAK int TVKcblazy(void *, int, const int *, const double *, char, double) { return TVK_ERROR_NOT_SUPPORTED; }
TVK_WEAK int TVKcbsetparam(void *, const char *, const char *) { return TVK_ERROR_NOT_SUPPORTED; }
TVK_WEAK int TVKcbproceed(void *) { return TVK_ERROR_NOT_SUPPORTED; }
TVK_WEAK int TVKcbstoponemultiobj(TVKmodel *model, void *, int) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKcbstoponemultiobj"); });
}
TVK_WEAK int TVKtunemodel(TVKmodel *model) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKtunemodel"); });
}
TVK_WEAK int TVKtunemodels(TVKenv *env, int, TVKmodel **) {
  return tarvik::envCall(env, nullptr, [](tarvik::Env &) { unavailable("TVKtunemodels"); });
}
TVK_WEAK int TVKgettuneresult(TVKmodel *model, int) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgettuneresult"); });
}
TVK_WEAK int TVKgettunelog(TVKmodel *model, int, char **) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgettunelog"); });
}
TVK_WEAK void TVKtuneparamsPrint() {}
TVK_WEAK int TVKreplay(const char *) { return TVK_ERROR_NOT_SUPPORTED; }
TVK_WEAK int TVKisrecordfile(const char *) { return TVK_ERROR_NOT_SUPPORTED; }
TVK_WEAK int TVKoptimizebatch(TVKmodel *model, char *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKoptimizebatch"); });
}
TVK_WEAK int TVKgetbatch(TVKenv *env, const char *, TVKbatch **) {
  return tarvik::envCall(env, nullptr, [](tarvik::Env &) { unavailable("TVKgetbatch"); });
}
TVK_WEAK int TVKupdatebatch(TVKbatch *) { return TVK_ERROR_NOT_SUPPORTED; }
TVK_WEAK int TVKgetbatchjsonsolution(TVKbatch *, char **) { return TVK_ERROR_NOT_SUPPORTED; }
TVK_WEAK int TVKgetcommstats(TVKenv *env, double *) {
  return tarvik::envCall(env, nullptr, [](tarvik::Env &) { unavailable("TVKgetcommstats"); });
}
TVK_WEAK int TVKpingserver(const char *, const char *) { return TVK_ERROR_NOT_SUPPORTED; }
TVK_WEAK int TVKprefetchattr(TVKmodel *model, const char *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKprefetchattr"); });
}

}  // extern "C"
