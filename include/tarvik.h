/* Tarvik: mathematical optimization. The C interface of libtarvik110.
 *
 * Every function returns 0 on success or one of the TVK_ERROR_ codes, unless its
 * comment says otherwise; the text that goes with a code is read with
 * TVKgeterrormsg (environment) or TVKgetmerrormsg (model). Handles are opaque and
 * belong to the library; input arrays and strings are read during the call only.
 * Strings handed out as char ** stay owned by the library, and memory that a
 * function documents as allocated for the caller is released with TVKfree.
 * Indices are 0-based. Values of 1e100 or more in magnitude mean infinity.
 *
 * The X variants take nonzero counts and begin offsets as size_t; everything else
 * in them is as in the plain function.
 */
#ifndef TARVIK_H
#define TARVIK_H

#include <stddef.h>

#if defined(_WIN32)
#define TVK_API
#else
#define TVK_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Types ---- */

typedef struct TVKenv TVKenv;
typedef struct TVKmodel TVKmodel;
typedef struct TVKbatch TVKbatch;

/* Sparse vector of the basis functions: len entries (ind[k], val[k]). */
typedef struct TVKsvec { int len; int *ind; double *val; } TVKsvec;

/* User callback. cbdata is the callback context, usrdata the pointer given at registration.
   A nonzero return aborts the running optimization with that value as its error code.
   model is null for a message that belongs to an environment only. */
typedef int (*TVKcallback)(TVKmodel *model, void *cbdata, int where, void *usrdata);

/* Log callback: one completed line of log text, newline included. The return value is ignored. */
typedef int (*TVKlogcallback)(const char *msg, void *logdata);

/* Memory and thread functions of TVKemptyenvadv; each may be null; userdata is the pointer given there. */
typedef void *(*TVKallocfn)(size_t size, void *userdata);
typedef void *(*TVKzeroallocfn)(size_t count, size_t size, void *userdata);
typedef void *(*TVKreallocfn)(void *ptr, size_t size, void *userdata);
typedef void (*TVKfreefn)(void *ptr, void *userdata);
typedef void *(*TVKthreadstart)(void *arg);
typedef int (*TVKthreadcreatefn)(void **threadP, TVKthreadstart start, void *arg, void *userdata);   /* nonzero: failure */
typedef void (*TVKthreadjoinfn)(void *thread, void *userdata);


/* ---- Environment and parameters ----
 *
 * Every function returns 0 or an error code unless its line says otherwise. TVKgetenv,
 * TVKgetconcurrentenv, TVKgetmultiobjenv and TVKgettuneenv return null on failure; the
 * three discard functions return nothing and ignore an invalid handle. TVKgetparamtype
 * returns 1 (int), 2 (double) or 3 (string), -1 for an unknown name. TVKgetnumparams
 * returns the count of public parameters, 0 for an invalid environment. The value
 * buffer of TVKgetstrparam and both buffers of TVKgetstrparaminfo hold at least 512
 * bytes. In TVKgetintparaminfo and TVKgetdblparaminfo every output may be null.
 */

TVK_API int TVKemptyenv(TVKenv **envP);
TVK_API int TVKemptyenvadv(TVKenv **envP, TVKallocfn allocfn, TVKzeroallocfn zeroallocfn, TVKreallocfn reallocfn, TVKfreefn freefn, TVKthreadcreatefn threadcreatefn, TVKthreadjoinfn threadjoinfn, void *userdata);
TVK_API int TVKemptyenvadvinternal(TVKenv **envP, int apitype, int major, int minor, int technical, TVKallocfn allocfn, TVKzeroallocfn zeroallocfn, TVKreallocfn reallocfn, TVKfreefn freefn, TVKthreadcreatefn threadcreatefn, TVKthreadjoinfn threadjoinfn, void *userdata);
TVK_API int TVKloadenv(TVKenv **envP, const char *logfilename);
TVK_API int TVKloadenvadv(TVKenv **envP, const char *logfilename, int apitype, int major, int minor, int technical, const char *server, const char *router, const char *password, const char *group, int priority, int idletimeout, const char *cloudaccessid, const char *cloudsecretkey, TVKcallback cb, void *cbdata, TVKlogcallback logcb, void *logcbdata);
TVK_API int TVKstartenv(TVKenv *env);
TVK_API int TVKfreeenv(TVKenv *env);
TVK_API TVKenv *TVKgetenv(TVKmodel *model);
TVK_API TVKenv *TVKgetconcurrentenv(TVKmodel *model, int num);
TVK_API void TVKdiscardconcurrentenvs(TVKmodel *model);
TVK_API TVKenv *TVKgetmultiobjenv(TVKmodel *model, int index);
TVK_API void TVKdiscardmultiobjenvs(TVKmodel *model);
TVK_API TVKenv *TVKgettuneenv(TVKenv *env, int index);
TVK_API void TVKdiscardtuneenvs(TVKenv *env);
TVK_API int TVKcopyparams(TVKenv *dest, TVKenv *src);
TVK_API int TVKterminate(TVKmodel *model);
TVK_API int TVKsetsignal(TVKmodel *model);
TVK_API int TVKversion(int *major, int *minor, int *technical);
TVK_API int TVKfree(void *ptr);
TVK_API int TVKsetintparam(TVKenv *env, const char *name, int value);
TVK_API int TVKsetdblparam(TVKenv *env, const char *name, double value);
TVK_API int TVKsetstrparam(TVKenv *env, const char *name, const char *value);
TVK_API int TVKsetparam(TVKenv *env, const char *name, const char *value);
TVK_API int TVKgetintparam(TVKenv *env, const char *name, int *value);
TVK_API int TVKgetdblparam(TVKenv *env, const char *name, double *value);
TVK_API int TVKgetstrparam(TVKenv *env, const char *name, char *value);
TVK_API int TVKgetlongstrparam(TVKenv *env, const char *name, char *buffer, int buflen, int *length);
TVK_API int TVKgetparamtype(TVKenv *env, const char *name);
TVK_API int TVKgetintparaminfo(TVKenv *env, const char *name, int *value, int *min, int *max, int *defvalue);
TVK_API int TVKgetdblparaminfo(TVKenv *env, const char *name, double *value, double *min, double *max, double *defvalue);
TVK_API int TVKgetstrparaminfo(TVKenv *env, const char *name, char *value, char *defvalue);
TVK_API int TVKgetparamflags(TVKenv *env, const char *name, unsigned int *flags);
TVK_API int TVKgetnumparams(TVKenv *env);
TVK_API int TVKgetparamname(TVKenv *env, int i, char **name);
TVK_API int TVKresetparams(TVKenv *env);
TVK_API int TVKwriteparams(TVKenv *env, const char *filename);
TVK_API int TVKreadparams(TVKenv *env, const char *filename);
TVK_API int TVKreadtunebasesettings(TVKenv *env, const char *filename);

/* ---- Errors, log, utilities ----
 *
 * The two message functions return text owned by the environment (the empty string,
 * never null, when the handle is not valid). TVKplatform, TVKplatformext and
 * TVKgitrevision return constant text. TVKmsg uses its message as a format string
 * without arguments. TVKgetcpu and TVKgetdistro fill a caller buffer of at least 512
 * bytes. TVKissamestring returns 1 or 0. TVKclean2 and TVKclean3 return the largest
 * absolute value met; lenP is in and out. TVKparsecsv grows *fieldsP, which the caller
 * releases with TVKfree (0 capacity and a null array are a valid start).
 */

TVK_API const char *TVKgeterrormsg(TVKenv *env);
TVK_API const char *TVKgetmerrormsg(TVKmodel *model);
TVK_API void TVKmsg(TVKenv *env, const char *message);
TVK_API int TVKsetlogcallbackfunc(TVKmodel *model, TVKlogcallback cb, void *userdata);
TVK_API int TVKsetlogcallbackfuncenv(TVKenv *env, TVKlogcallback cb, void *userdata);
TVK_API int TVKgetlogcallbackfuncenv(TVKenv *env, TVKlogcallback *cbP, void **userdataP);
TVK_API const char *TVKplatform(void);
TVK_API const char *TVKplatformext(void);
TVK_API const char *TVKgitrevision(void);
TVK_API int TVKgetcpu(char *buffer);
TVK_API int TVKgetdistro(char *buffer);
TVK_API int TVKgetcores(void);
TVK_API int TVKissamestring(const char *a, const char *b, int n);
TVK_API int TVKparsecsv(char *line, char ***fieldsP, int *capacityP, int *countP);
TVK_API void TVKsortIDi(int n, int *ind, double *val);
TVK_API double TVKclean2(int *lenP, int *ind, double *val);
TVK_API double TVKclean3(int *lenP, int *ind0, int *ind1, double *val);

/* ---- Model ----
 *
 * TVKresetmodel(model) is TVKreset(model, 0). TVKfreemodel(NULL) returns 0. Any of
 * Pname, obj, lb, ub, vtype, varnames and constrnames may be null.
 */

TVK_API int TVKcheckmodel(TVKmodel *model);
TVK_API int TVKnewmodel(TVKenv *env, TVKmodel **modelP, const char *Pname, int numvars, const double *obj, const double *lb, const double *ub, const char *vtype, const char *const *varnames);
TVK_API int TVKloadmodel(TVKenv *env, TVKmodel **modelP, const char *Pname, int numvars, int numconstrs, int objsense, double objcon, const double *obj, const char *sense, const double *rhs, const int *vbeg, const int *vlen, const int *vind, const double *vval, const double *lb, const double *ub, const char *vtype, const char *const *varnames, const char *const *constrnames);
TVK_API int TVKXloadmodel(TVKenv *env, TVKmodel **modelP, const char *Pname, int numvars, int numconstrs, int objsense, double objcon, const double *obj, const char *sense, const double *rhs, const size_t *vbeg, const int *vlen, const int *vind, const double *vval, const double *lb, const double *ub, const char *vtype, const char *const *varnames, const char *const *constrnames);
TVK_API int TVKfreemodel(TVKmodel *model);
TVK_API int TVKreset(TVKmodel *model, int clearall);
TVK_API int TVKresetmodel(TVKmodel *model);
TVK_API int TVKupdatemodel(TVKmodel *model);

/* ---- Variables and linear constraints ----
 *
 * A 64-bit count whose top bit is set counts as negative: TVKXaddvars then returns
 * 10001, TVKXchgcoeffs 10006. In the multi-row and multi-column functions the begin
 * array holds one start per row or column; the end of the last one is numnz.
 */

TVK_API int TVKaddvar(TVKmodel *model, int numnz, const int *vind, const double *vval, double obj, double lb, double ub, char vtype, const char *varname);
TVK_API int TVKaddvars(TVKmodel *model, int numvars, int numnz, const int *vbeg, const int *vind, const double *vval, const double *obj, const double *lb, const double *ub, const char *vtype, const char *const *varnames);
TVK_API int TVKXaddvars(TVKmodel *model, int numvars, size_t numnz, const size_t *vbeg, const int *vind, const double *vval, const double *obj, const double *lb, const double *ub, const char *vtype, const char *const *varnames);
TVK_API int TVKaddconstr(TVKmodel *model, int numnz, const int *cind, const double *cval, char sense, double rhs, const char *constrname);
TVK_API int TVKaddconstrs(TVKmodel *model, int numconstrs, int numnz, const int *cbeg, const int *cind, const double *cval, const char *sense, const double *rhs, const char *const *constrnames);
TVK_API int TVKXaddconstrs(TVKmodel *model, int numconstrs, size_t numnz, const size_t *cbeg, const int *cind, const double *cval, const char *sense, const double *rhs, const char *const *constrnames);
TVK_API int TVKaddrangeconstr(TVKmodel *model, int numnz, const int *cind, const double *cval, double lower, double upper, const char *constrname);
TVK_API int TVKaddrangeconstrs(TVKmodel *model, int numconstrs, int numnz, const int *cbeg, const int *cind, const double *cval, const double *lower, const double *upper, const char *const *constrnames);
TVK_API int TVKXaddrangeconstrs(TVKmodel *model, int numconstrs, size_t numnz, const size_t *cbeg, const int *cind, const double *cval, const double *lower, const double *upper, const char *const *constrnames);
TVK_API int TVKchgcoeffs(TVKmodel *model, int cnt, const int *cind, const int *vind, const double *val);
TVK_API int TVKXchgcoeffs(TVKmodel *model, size_t cnt, const int *cind, const int *vind, const double *val);
TVK_API int TVKdelvars(TVKmodel *model, int numdel, const int *ind);
TVK_API int TVKdelconstrs(TVKmodel *model, int numdel, const int *ind);

/* ---- Quadratic terms, quadratic constraints, cones, SOS ---- */

TVK_API int TVKaddqpterms(TVKmodel *model, int numqnz, const int *qrow, const int *qcol, const double *qval);
TVK_API int TVKdelq(TVKmodel *model);
TVK_API int TVKaddqconstr(TVKmodel *model, int numlnz, const int *lind, const double *lval, int numqnz, const int *qrow, const int *qcol, const double *qval, char sense, double rhs, const char *QCname);
TVK_API int TVKdelqconstrs(TVKmodel *model, int numdel, const int *ind);
TVK_API int TVKaddcone(TVKmodel *model, int nummembers, const int *vind);
TVK_API int TVKaddsos(TVKmodel *model, int numsos, int nummembers, const int *types, const int *beg, const int *ind, const double *weight);
TVK_API int TVKdelsos(TVKmodel *model, int numdel, const int *ind);

/* ---- General constraints ----
 *
 * name and options may be null. The matching read functions stand under Queries.
 */

TVK_API int TVKaddgenconstrMax(TVKmodel *model, const char *name, int resvar, int nvars, const int *vars, double constant);
TVK_API int TVKaddgenconstrMin(TVKmodel *model, const char *name, int resvar, int nvars, const int *vars, double constant);
TVK_API int TVKaddgenconstrAbs(TVKmodel *model, const char *name, int resvar, int argvar);
TVK_API int TVKaddgenconstrAnd(TVKmodel *model, const char *name, int resvar, int nvars, const int *vars);
TVK_API int TVKaddgenconstrOr(TVKmodel *model, const char *name, int resvar, int nvars, const int *vars);
TVK_API int TVKaddgenconstrNorm(TVKmodel *model, const char *name, int resvar, int nvars, const int *vars, double which);
TVK_API int TVKaddgenconstrIndicator(TVKmodel *model, const char *name, int binvar, int binval, int nvars, const int *ind, const double *val, char sense, double rhs);
TVK_API int TVKaddgenconstrPWL(TVKmodel *model, const char *name, int xvar, int yvar, int npts, const double *xpts, const double *ypts);
TVK_API int TVKaddgenconstrPoly(TVKmodel *model, const char *name, int xvar, int yvar, int plen, const double *p, const char *options);
TVK_API int TVKaddgenconstrExp(TVKmodel *model, const char *name, int xvar, int yvar, const char *options);
TVK_API int TVKaddgenconstrLog(TVKmodel *model, const char *name, int xvar, int yvar, const char *options);
TVK_API int TVKaddgenconstrSin(TVKmodel *model, const char *name, int xvar, int yvar, const char *options);
TVK_API int TVKaddgenconstrCos(TVKmodel *model, const char *name, int xvar, int yvar, const char *options);
TVK_API int TVKaddgenconstrTan(TVKmodel *model, const char *name, int xvar, int yvar, const char *options);
TVK_API int TVKaddgenconstrLogistic(TVKmodel *model, const char *name, int xvar, int yvar, const char *options);
TVK_API int TVKaddgenconstrExpA(TVKmodel *model, const char *name, int xvar, int yvar, double a, const char *options);
TVK_API int TVKaddgenconstrLogA(TVKmodel *model, const char *name, int xvar, int yvar, double a, const char *options);
TVK_API int TVKaddgenconstrPow(TVKmodel *model, const char *name, int xvar, int yvar, double a, const char *options);
TVK_API int TVKdelgenconstrs(TVKmodel *model, int numdel, const int *ind);

/* ---- Names ----
 *
 * indexP receives -1 when nothing has that name; the call still returns 0.
 */

TVK_API int TVKgetvarbyname(TVKmodel *model, const char *name, int *indexP);
TVK_API int TVKgetconstrbyname(TVKmodel *model, const char *name, int *indexP);
TVK_API int TVKgetqconstrbyname(TVKmodel *model, const char *name, int *indexP);

/* ---- Objectives, scenarios ----
 *
 * Scenarios have no functions of their own: they are set through the attributes
 * NumScenarios and ScenN… with the parameter ScenarioNumber.
 */

TVK_API int TVKsetobjective(TVKmodel *model, int sense, double constant, int lnz, const int *lind, const double *lval, int qnz, const int *qrow, const int *qcol, const double *qval);
TVK_API int TVKsetobjectiven(TVKmodel *model, int index, int priority, double weight, double abstol, double reltol, const char *name, double constant, int lnz, const int *lind, const double *lval);
TVK_API int TVKsetpwlobj(TVKmodel *model, int var, int npts, const double *x, const double *y);

/* ---- Attributes ----
 *
 * There is no scalar char getter or setter. Strings handed out stay owned by the
 * model. TVKisattravailable returns 1 or 0; TVKgetnumattributes returns the number of
 * attributes, -1 for an invalid model. Every output of TVKgetattrinfo may be null.
 */

TVK_API int TVKgetintattr(TVKmodel *model, const char *attrname, int *value);
TVK_API int TVKsetintattr(TVKmodel *model, const char *attrname, int value);
TVK_API int TVKgetdblattr(TVKmodel *model, const char *attrname, double *value);
TVK_API int TVKsetdblattr(TVKmodel *model, const char *attrname, double value);
TVK_API int TVKgetstrattr(TVKmodel *model, const char *attrname, char **value);
TVK_API int TVKsetstrattr(TVKmodel *model, const char *attrname, const char *value);
TVK_API int TVKgetintattrelement(TVKmodel *model, const char *attrname, int element, int *value);
TVK_API int TVKsetintattrelement(TVKmodel *model, const char *attrname, int element, int value);
TVK_API int TVKgetcharattrelement(TVKmodel *model, const char *attrname, int element, char *value);
TVK_API int TVKsetcharattrelement(TVKmodel *model, const char *attrname, int element, char value);
TVK_API int TVKgetdblattrelement(TVKmodel *model, const char *attrname, int element, double *value);
TVK_API int TVKsetdblattrelement(TVKmodel *model, const char *attrname, int element, double value);
TVK_API int TVKgetstrattrelement(TVKmodel *model, const char *attrname, int element, char **value);
TVK_API int TVKsetstrattrelement(TVKmodel *model, const char *attrname, int element, const char *value);
TVK_API int TVKgetintattrarray(TVKmodel *model, const char *attrname, int first, int len, int *values);
TVK_API int TVKsetintattrarray(TVKmodel *model, const char *attrname, int first, int len, const int *values);
TVK_API int TVKgetcharattrarray(TVKmodel *model, const char *attrname, int first, int len, char *values);
TVK_API int TVKsetcharattrarray(TVKmodel *model, const char *attrname, int first, int len, const char *values);
TVK_API int TVKgetdblattrarray(TVKmodel *model, const char *attrname, int first, int len, double *values);
TVK_API int TVKsetdblattrarray(TVKmodel *model, const char *attrname, int first, int len, const double *values);
TVK_API int TVKgetstrattrarray(TVKmodel *model, const char *attrname, int first, int len, char **values);
TVK_API int TVKsetstrattrarray(TVKmodel *model, const char *attrname, int first, int len, const char *const *values);
TVK_API int TVKgetintattrlist(TVKmodel *model, const char *attrname, int len, const int *ind, int *values);
TVK_API int TVKsetintattrlist(TVKmodel *model, const char *attrname, int len, const int *ind, const int *values);
TVK_API int TVKgetcharattrlist(TVKmodel *model, const char *attrname, int len, const int *ind, char *values);
TVK_API int TVKsetcharattrlist(TVKmodel *model, const char *attrname, int len, const int *ind, const char *values);
TVK_API int TVKgetdblattrlist(TVKmodel *model, const char *attrname, int len, const int *ind, double *values);
TVK_API int TVKsetdblattrlist(TVKmodel *model, const char *attrname, int len, const int *ind, const double *values);
TVK_API int TVKgetstrattrlist(TVKmodel *model, const char *attrname, int len, const int *ind, char **values);
TVK_API int TVKsetstrattrlist(TVKmodel *model, const char *attrname, int len, const int *ind, const char *const *values);
TVK_API int TVKgetattrinfo(TVKmodel *model, const char *attrname, int *datatype, int *attrtype, int *settable);
TVK_API int TVKisattravailable(TVKmodel *model, const char *attrname);
TVK_API int TVKgetnumattributes(TVKmodel *model);
TVK_API int TVKgetattrname(TVKmodel *model, int i, char **name);

/* ---- Queries ----
 *
 * Two-call protocol: the count output is always stored; the arrays are filled only
 * when all arrays of the call are given (in TVKgetqconstr each array on its own), so a
 * first call with null arrays asks for the size. In the general-constraint functions
 * every output may be null, arrays included. TVKgetgenconstr… of a function constraint
 * hands back the options text through optionsP (a string in the form that the add
 * function accepts, owned by the model; the empty string when the constraint has only
 * default options).
 */

TVK_API int TVKgetcoeff(TVKmodel *model, int constr, int var, double *valP);
TVK_API int TVKgetvars(TVKmodel *model, int *numnzP, int *vbeg, int *vind, double *vval, int start, int len);
TVK_API int TVKXgetvars(TVKmodel *model, size_t *numnzP, size_t *vbeg, int *vind, double *vval, int start, int len);
TVK_API int TVKgetconstrs(TVKmodel *model, int *numnzP, int *cbeg, int *cind, double *cval, int start, int len);
TVK_API int TVKXgetconstrs(TVKmodel *model, size_t *numnzP, size_t *cbeg, int *cind, double *cval, int start, int len);
TVK_API int TVKgetsos(TVKmodel *model, int *nummembersP, int *sostype, int *beg, int *ind, double *weight, int start, int len);
TVK_API int TVKgetq(TVKmodel *model, int *numqnzP, int *qrow, int *qcol, double *qval);
TVK_API int TVKgetqconstr(TVKmodel *model, int qconstr, int *numlnzP, int *lind, double *lval, int *numqnzP, int *qrow, int *qcol, double *qval);
TVK_API int TVKgetpwlobj(TVKmodel *model, int var, int *npointsP, double *x, double *y);
TVK_API int TVKgetgenconstrMax(TVKmodel *model, int id, int *resvarP, int *nvarsP, int *vars, double *constantP);
TVK_API int TVKgetgenconstrMin(TVKmodel *model, int id, int *resvarP, int *nvarsP, int *vars, double *constantP);
TVK_API int TVKgetgenconstrAbs(TVKmodel *model, int id, int *resvarP, int *argvarP);
TVK_API int TVKgetgenconstrAnd(TVKmodel *model, int id, int *resvarP, int *nvarsP, int *vars);
TVK_API int TVKgetgenconstrOr(TVKmodel *model, int id, int *resvarP, int *nvarsP, int *vars);
TVK_API int TVKgetgenconstrNorm(TVKmodel *model, int id, int *resvarP, int *nvarsP, int *vars, double *whichP);
TVK_API int TVKgetgenconstrIndicator(TVKmodel *model, int id, int *binvarP, int *binvalP, int *nvarsP, int *ind, double *val, char *senseP, double *rhsP);
TVK_API int TVKgetgenconstrPWL(TVKmodel *model, int id, int *xvarP, int *yvarP, int *nptsP, double *xpts, double *ypts);
TVK_API int TVKgetgenconstrPoly(TVKmodel *model, int id, int *xvarP, int *yvarP, int *plenP, double *p, char **optionsP);
TVK_API int TVKgetgenconstrExp(TVKmodel *model, int id, int *xvarP, int *yvarP, char **optionsP);
TVK_API int TVKgetgenconstrLog(TVKmodel *model, int id, int *xvarP, int *yvarP, char **optionsP);
TVK_API int TVKgetgenconstrSin(TVKmodel *model, int id, int *xvarP, int *yvarP, char **optionsP);
TVK_API int TVKgetgenconstrCos(TVKmodel *model, int id, int *xvarP, int *yvarP, char **optionsP);
TVK_API int TVKgetgenconstrTan(TVKmodel *model, int id, int *xvarP, int *yvarP, char **optionsP);
TVK_API int TVKgetgenconstrLogistic(TVKmodel *model, int id, int *xvarP, int *yvarP, char **optionsP);
TVK_API int TVKgetgenconstrExpA(TVKmodel *model, int id, int *xvarP, int *yvarP, double *aP, char **optionsP);
TVK_API int TVKgetgenconstrLogA(TVKmodel *model, int id, int *xvarP, int *yvarP, double *aP, char **optionsP);
TVK_API int TVKgetgenconstrPow(TVKmodel *model, int id, int *xvarP, int *yvarP, double *aP, char **optionsP);

/* ---- Files ----
 *
 * TVKfiletype returns the type number or -1; TVKismodelfile and
 * TVKisattrfile return 1 or 0. *buffP must be null on entry and is released with
 * TVKfree.
 */

TVK_API int TVKfiletype(const char *filename);
TVK_API int TVKismodelfile(const char *filename);
TVK_API int TVKisattrfile(const char *filename);
TVK_API int TVKreadmodel(TVKenv *env, const char *filename, TVKmodel **modelP);
TVK_API int TVKread(TVKmodel *model, const char *filename);
TVK_API int TVKwrite(TVKmodel *model, const char *filename);
TVK_API int TVKgetjsonsolution(TVKmodel *model, char **buffP);
TVK_API int TVKloadjson(TVKenv *env, const char *filename, char **buffP);

/* ---- Optimization ----
 *
 * TVKsync waits for the background solve that TVKoptimizeasync started and returns
 * that solve's error code, 0 when none was started; it is a local function, no stub.
 */

TVK_API int TVKoptimize(TVKmodel *model);
TVK_API int TVKoptimizeasync(TVKmodel *model);
TVK_API int TVKsync(TVKmodel *model);

/* ---- Derived models ----
 *
 * TVKcopymodel and TVKfixedmodel return the new handle, null on failure. A null output
 * pointer for the new model gives 10003. TVKfeasrelax and TVKconverttofixed change the
 * model itself; each penalty array may be null.
 */

TVK_API int TVKresultmodel(TVKmodel *model, const char *type, TVKmodel **modelP);
TVK_API int TVKrelaxmodel(TVKmodel *model, TVKmodel **modelP);
TVK_API int TVKfeasibility(TVKmodel *model, TVKmodel **modelP);
TVK_API int TVKlinearizemodel(TVKmodel *model, TVKmodel **modelP);
TVK_API int TVKfixmodel(TVKmodel *model, TVKmodel **modelP);
TVK_API TVKmodel *TVKfixedmodel(TVKmodel *model);
TVK_API int TVKconverttofixed(TVKmodel *model);
TVK_API int TVKdualmodel(TVKmodel *model, TVKmodel **modelP);
TVK_API int TVKsinglescenariomodel(TVKmodel *model, TVKmodel **modelP);
TVK_API int TVKpresolvemodel(TVKmodel *model, TVKmodel **modelP);
TVK_API TVKmodel *TVKcopymodel(TVKmodel *model);
TVK_API int TVKcopymodeltoenv(TVKmodel *model, TVKenv *targetenv, TVKmodel **copyP);
TVK_API int TVKiismodel(TVKmodel *model, TVKmodel **modelP);
TVK_API int TVKfeasrelax(TVKmodel *model, int relaxtype, int minrelax, const double *lbpen, const double *ubpen, const double *rhspen, double *objP);

/* ---- Basis access ----
 *
 * Six names of this section do not begin with a lower-case letter after the prefix.
 * The caller provides the ind and val arrays of every result vector: room for one
 * entry per constraint, for TVKBinvRowi one per variable plus one per constraint; len
 * is set by the call. bhead has one entry per constraint. TVKsingularvectors allocates
 * each vector that is asked for as one block (structure and arrays together), which
 * the caller releases with one TVKfree; either output may be null; for a model without
 * constraints the vectors have len -1.
 */

TVK_API int TVKFSolve(TVKmodel *model, const TVKsvec *b, TVKsvec *x);
TVK_API int TVKBSolve(TVKmodel *model, const TVKsvec *b, TVKsvec *y);
TVK_API int TVKBinvColj(TVKmodel *model, int j, TVKsvec *x);
TVK_API int TVKBinvj(TVKmodel *model, int j, TVKsvec *x);
TVK_API int TVKBinvi(TVKmodel *model, int i, TVKsvec *x);
TVK_API int TVKBinvRowi(TVKmodel *model, int i, TVKsvec *x);
TVK_API int TVKgetBasisHead(TVKmodel *model, int *bhead);
TVK_API int TVKsingularvectors(TVKmodel *model, TVKsvec **uP, TVKsvec **vP);

/* ---- Strong branching and IIS ---- */

TVK_API int TVKstrongbranch(TVKmodel *model, int num, const int *cand, double *downobjbd, double *upobjbd, int *statusP);
TVK_API int TVKcomputeIIS(TVKmodel *model);

/* ---- Callbacks ----
 *
 * cbdata is the context that the user callback received. resultP points to an int, a
 * double, a double array of length NumVars, or a char * that receives a pointer to the
 * text, by the type of what.
 */

TVK_API int TVKsetcallbackfunc(TVKmodel *model, TVKcallback cb, void *userdata);
TVK_API int TVKsetcallbackfuncenv(TVKenv *env, TVKcallback cb, void *userdata);
TVK_API int TVKgetcallbackfunc(TVKmodel *model, TVKcallback *cbP);
TVK_API int TVKgetcallbackfuncenv(TVKenv *env, TVKcallback *cbP);
TVK_API int TVKgetcbwhatinfo(void *cbdata, int what, int *typeP, int *sizeP);
TVK_API int TVKcbget(void *cbdata, int where, int what, void *resultP);
TVK_API int TVKcbsolution(void *cbdata, const double *solution, double *objP);
TVK_API int TVKcbcut(void *cbdata, int cutlen, const int *cutind, const double *cutval, char cutsense, double cutrhs);
TVK_API int TVKcblazy(void *cbdata, int lazylen, const int *lazyind, const double *lazyval, char lazysense, double lazyrhs);
TVK_API int TVKcbsetparam(void *cbdata, const char *paramname, const char *newvalue);
TVK_API int TVKcbproceed(void *cbdata);
TVK_API int TVKcbstoponemultiobj(TVKmodel *model, void *cbdata, int objnum);

/* ---- Tuning ----
 *
 * The text that TVKgettunelog hands out is owned by the model. TVKtuneparamsPrint
 * prints to standard output and returns nothing.
 */

TVK_API int TVKtunemodel(TVKmodel *model);
TVK_API int TVKtunemodels(TVKenv *env, int nummodels, TVKmodel **models);
TVK_API int TVKgettuneresult(TVKmodel *model, int i);
TVK_API int TVKgettunelog(TVKmodel *model, int i, char **logP);
TVK_API void TVKtuneparamsPrint(void);

/* ---- Recording and replay ----
 *
 * TVKisrecordfile returns 1 or 0. TVKreplay needs no environment: it makes its own.
 */

TVK_API int TVKreplay(const char *filename);
TVK_API int TVKisrecordfile(const char *filename);

/* ---- Remote services ----
 *
 * These exist so that every name resolves; the services behind them are not part of
 * the library. What follows is settled by convention, except the four results of
 * TVKoptimizebatch. TVKoptimizebatch makes its checks in this order: model check; null
 * buffer 10002; NumTagged 0 gives 10003; otherwise 10024 "Not implemented for regular
 * environments". Each of the others first makes the usual handle check (null or
 * invalid environment or model: that check's code) and then returns 10024
 * (TVKpingserver has no handle to check); outputs are left untouched; a batch handle
 * is never produced, so TVKupdatebatch and TVKgetbatchjsonsolution return 10002 for
 * null and 10024 for anything else without looking at it. batchID is a caller buffer
 * of at least 512 bytes in TVKoptimizebatch.
 */

TVK_API int TVKoptimizebatch(TVKmodel *model, char *batchID);
TVK_API int TVKgetbatch(TVKenv *env, const char *batchID, TVKbatch **batchP);
TVK_API int TVKupdatebatch(TVKbatch *batch);
TVK_API int TVKgetbatchjsonsolution(TVKbatch *batch, char **buffP);
TVK_API int TVKgetcommstats(TVKenv *env, double *statsP);
TVK_API int TVKpingserver(const char *server, const char *password);
TVK_API int TVKprefetchattr(TVKmodel *model, const char *attrname);

/* ---- Error codes ---- */

#define TVK_ERROR_OUT_OF_MEMORY 10001
#define TVK_ERROR_NULL_ARGUMENT 10002
#define TVK_ERROR_INVALID_ARGUMENT 10003
#define TVK_ERROR_UNKNOWN_ATTRIBUTE 10004
#define TVK_ERROR_DATA_NOT_AVAILABLE 10005
#define TVK_ERROR_INDEX_OUT_OF_RANGE 10006
#define TVK_ERROR_UNKNOWN_PARAMETER 10007
#define TVK_ERROR_VALUE_OUT_OF_RANGE 10008
#define TVK_ERROR_NOT_STARTED 10009
#define TVK_ERROR_CALLBACK 10011
#define TVK_ERROR_FILE_READ 10012
#define TVK_ERROR_FILE_WRITE 10013
#define TVK_ERROR_NUMERIC 10014
#define TVK_ERROR_IIS_NOT_INFEASIBLE 10015
#define TVK_ERROR_NOT_FOR_MIP 10016
#define TVK_ERROR_OPTIMIZATION_IN_PROGRESS 10017
#define TVK_ERROR_DUPLICATES 10018
#define TVK_ERROR_NODEFILE 10019
#define TVK_ERROR_Q_NOT_PSD 10020
#define TVK_ERROR_QCP_EQUALITY_CONSTRAINT 10021
#define TVK_ERROR_NETWORK 10022
#define TVK_ERROR_JOB_REJECTED 10023
#define TVK_ERROR_NOT_SUPPORTED 10024
#define TVK_ERROR_EXCEED_2B_NONZEROS 10025
#define TVK_ERROR_INVALID_PIECEWISE_OBJ 10026
#define TVK_ERROR_UPDATEMODE_CHANGE 10027
#define TVK_ERROR_CLOUD 10028
#define TVK_ERROR_MODEL_MODIFICATION 10029
#define TVK_ERROR_CSWORKER 10030
#define TVK_ERROR_TUNE_MODEL_TYPES 10031

/* ---- Optimization status codes (the attribute Status) ---- */

#define TVK_LOADED 1
#define TVK_OPTIMAL 2
#define TVK_INFEASIBLE 3
#define TVK_INF_OR_UNBD 4
#define TVK_UNBOUNDED 5
#define TVK_CUTOFF 6
#define TVK_ITERATION_LIMIT 7
#define TVK_NODE_LIMIT 8
#define TVK_TIME_LIMIT 9
#define TVK_SOLUTION_LIMIT 10
#define TVK_INTERRUPTED 11
#define TVK_NUMERIC 12
#define TVK_SUBOPTIMAL 13
#define TVK_INPROGRESS 14
#define TVK_USER_OBJ_LIMIT 15
#define TVK_WORK_LIMIT 16
#define TVK_MEM_LIMIT 17

/* ---- Callback where codes ---- */

#define TVK_CB_POLLING 0
#define TVK_CB_PRESOLVE 1
#define TVK_CB_SIMPLEX 2
#define TVK_CB_MIP 3
#define TVK_CB_MIPSOL 4
#define TVK_CB_MIPNODE 5
#define TVK_CB_MESSAGE 6
#define TVK_CB_BARRIER 7
#define TVK_CB_MULTIOBJ 8
#define TVK_CB_IIS 9

/* ---- Callback what codes; each is valid in its where only, the run time and work in every one ---- */

#define TVK_CB_PRE_COLDEL 1000 /* int: columns removed by presolve */
#define TVK_CB_PRE_ROWDEL 1001 /* int: rows removed by presolve */
#define TVK_CB_PRE_SENSECHG 1002 /* int: constraint senses changed by presolve */
#define TVK_CB_PRE_BOUNDCHG 1003 /* int: variable bounds changed by presolve */
#define TVK_CB_PRE_COEFCHG 1004 /* int: coefficients changed by presolve */
#define TVK_CB_SPX_ITERCOUNT 2000 /* double: simplex iteration count, earlier phases included */
#define TVK_CB_SPX_OBJVAL 2001 /* double: current objective value, in the caller's sense */
#define TVK_CB_SPX_PRIMINF 2002 /* double: primal infeasibility */
#define TVK_CB_SPX_DUALINF 2003 /* double: dual infeasibility */
#define TVK_CB_SPX_PERTURBED 2004 /* int: perturbation state (0, 1 or 2) */
#define TVK_CB_MIP_BESTOBJ 3000 /* double: best objective, in the caller's sense */
#define TVK_CB_MIP_BESTBOUND 3001 /* double: best bound, in the caller's sense */
#define TVK_CB_MIP_NODECOUNT 3002 /* double: explored nodes */
#define TVK_CB_MIP_SOLCOUNT 3003 /* int: solutions found */
#define TVK_CB_MIP_CUTCOUNT 3004 /* int: cuts */
#define TVK_CB_MIP_OPENNODECOUNT 3005 /* double: unexplored nodes */
#define TVK_CB_MIP_ITERCOUNT 3006 /* double: simplex iterations */
#define TVK_CB_MIP_OPENSCENARIOS 3007 /* int: open scenarios */
#define TVK_CB_MIP_PHASE 3008 /* int: search phase */
#define TVK_CB_MIP_PROGRESSTIME 3500 /* double: latest progress time seen by the context */
#define TVK_CB_MIP_COUNTER1 3501 /* double: search counter */
#define TVK_CB_MIP_COUNTER2 3502 /* double: search counter */
#define TVK_CB_MIP_COUNTER3 3503 /* double: search counter */
#define TVK_CB_MIP_NODEBOUND 3504 /* double: objective bound of the current node */
#define TVK_CB_MIP_COUNTER5 3505 /* double: search counter */
#define TVK_CB_MIP_COUNTER6 3506 /* double: search counter */
#define TVK_CB_MIP_OBJVAL 3507 /* double: sense-adjusted objective value */
#define TVK_CB_MIPSOL_SOL 4001 /* double array: the new incumbent */
#define TVK_CB_MIPSOL_OBJ 4002 /* double: objective of the new incumbent */
#define TVK_CB_MIPSOL_BESTOBJ 4003 /* double: best objective */
#define TVK_CB_MIPSOL_BESTBOUND 4004 /* double: best bound */
#define TVK_CB_MIPSOL_NODECOUNT 4005 /* double: explored nodes */
#define TVK_CB_MIPSOL_SOLCOUNT 4006 /* int: solutions found */
#define TVK_CB_MIPSOL_OPENSCENARIOS 4007 /* int: open scenarios */
#define TVK_CB_MIPSOL_PHASE 4008 /* int: search phase */
#define TVK_CB_MIPSOL_COUNTER 4500 /* int: search counter kept in the context */
#define TVK_CB_MIPSOL_PROGRESSTIME 4501 /* double: the value of 3500, 0 when absent */
#define TVK_CB_MIPSOL_BESTBOUND2 4502 /* double: second best bound, sense-adjusted */
#define TVK_CB_MIPNODE_STATUS 5001 /* int: node status */
#define TVK_CB_MIPNODE_SOL 5002 /* double array: solution of the node relaxation */
#define TVK_CB_MIPNODE_BESTOBJ 5003 /* double: best objective, in the caller's sense */
#define TVK_CB_MIPNODE_BESTBOUND 5004 /* double: best bound, in the caller's sense */
#define TVK_CB_MIPNODE_NODECOUNT 5005 /* double: explored nodes */
#define TVK_CB_MIPNODE_SOLCOUNT 5006 /* int: solutions found */
#define TVK_CB_MIPNODE_BRANCH 5007 /* int: branching information */
#define TVK_CB_MIPNODE_OPENSCENARIOS 5008 /* int: open scenarios */
#define TVK_CB_MIPNODE_PHASE 5009 /* int: search phase */
#define TVK_CB_MIPNODE_BESTBOUND2 5500 /* double: the value of 4502 */
#define TVK_CB_MSG_STRING 6001 /* string: the message text, in the context's buffer */
#define TVK_CB_RUNTIME 6002 /* double: seconds since the optimization started, 0 when not started */
#define TVK_CB_WORK 6003 /* double: work units since the optimization started, 0 when not started */
#define TVK_CB_BARRIER_ITERCOUNT 7001 /* int: barrier iteration */
#define TVK_CB_BARRIER_PRIMOBJ 7002 /* double: primal objective */
#define TVK_CB_BARRIER_DUALOBJ 7003 /* double: dual objective */
#define TVK_CB_BARRIER_PRIMINF 7004 /* double: primal infeasibility */
#define TVK_CB_BARRIER_DUALINF 7005 /* double: dual infeasibility */
#define TVK_CB_BARRIER_COMPL 7006 /* double: complementarity */
#define TVK_CB_MULTIOBJ_DONECOUNT 8001 /* int: objectives (levels) finished so far */
#define TVK_CB_MULTIOBJ_SOLCOUNT 8002 /* int: solutions found so far */
#define TVK_CB_MULTIOBJ_SOL 8003 /* double array: current solution, 10005 when there is none */
#define TVK_CB_IIS_CONSTRMIN 9001 /* int: constraints known to be in the IIS */
#define TVK_CB_IIS_CONSTRMAX 9002 /* int: constraints that may still be in it */
#define TVK_CB_IIS_CONSTRGUESS 9003 /* int: constraint guess */
#define TVK_CB_IIS_BOUNDMIN 9004 /* int: bounds known to be in the IIS */
#define TVK_CB_IIS_BOUNDMAX 9005 /* int: bounds that may still be in it */
#define TVK_CB_IIS_BOUNDGUESS 9006 /* int: bound guess */

/* ---- Basis status (the attributes VBasis and CBasis) ---- */

#define TVK_BASIC 0 /* basic */
#define TVK_NONBASIC_LOWER (-1) /* nonbasic at the lower bound */
#define TVK_NONBASIC_UPPER (-2) /* nonbasic at the upper bound */
#define TVK_SUPERBASIC (-3) /* superbasic */

/* ---- Numeric conventions ---- */

#define TVK_INFINITY 1e100 /* infinity in parameters, attributes and results (a value at or beyond it in magnitude) */
#define TVK_UNDEFINED 1e101 /* a value that is not available or not set (start values, hints) */
#define TVK_MAXINT 2000000000 /* no limit, for integers */

/* ---- Characters ---- */

#define TVK_CONTINUOUS 'C' /* variable type: continuous */
#define TVK_BINARY 'B' /* variable type: binary */
#define TVK_INTEGER 'I' /* variable type: integer */
#define TVK_SEMICONT 'S' /* variable type: semi-continuous */
#define TVK_SEMIINT 'N' /* variable type: semi-integer */
#define TVK_LESS_EQUAL '<' /* constraint sense (also accepted: L, l) */
#define TVK_GREATER_EQUAL '>' /* constraint sense (also accepted: G, g) */
#define TVK_EQUAL '=' /* constraint sense (also accepted: E, e) */

/* ---- General-constraint types (the attribute GenConstrType) ---- */

#define TVK_GENCONSTR_MAX 0
#define TVK_GENCONSTR_MIN 1
#define TVK_GENCONSTR_ABS 2
#define TVK_GENCONSTR_AND 3
#define TVK_GENCONSTR_OR 4
#define TVK_GENCONSTR_NORM 5
#define TVK_GENCONSTR_INDICATOR 6
#define TVK_GENCONSTR_PWL 7
#define TVK_GENCONSTR_POLY 8
#define TVK_GENCONSTR_EXP 9
#define TVK_GENCONSTR_EXPA 10
#define TVK_GENCONSTR_LOG 11
#define TVK_GENCONSTR_LOGA 12
#define TVK_GENCONSTR_POW 13
#define TVK_GENCONSTR_SIN 14
#define TVK_GENCONSTR_COS 15
#define TVK_GENCONSTR_TAN 16
#define TVK_GENCONSTR_LOGISTIC 17

/* ---- Methods (the parameter Method) ---- */

#define TVK_METHOD_AUTO (-1)
#define TVK_METHOD_PRIMAL 0
#define TVK_METHOD_DUAL 1
#define TVK_METHOD_BARRIER 2
#define TVK_METHOD_CONCURRENT 3
#define TVK_METHOD_DETERMINISTIC_CONCURRENT 4
#define TVK_METHOD_DETERMINISTIC_CONCURRENT_SIMPLEX 5

/* ---- File types (the result of TVKfiletype) ---- */

#define TVK_FILETYPE_UNKNOWN (-1) /* unknown */
#define TVK_FILETYPE_MPS 1 /* .mps */
#define TVK_FILETYPE_REW 2 /* .rew */
#define TVK_FILETYPE_LP 3 /* .lp */
#define TVK_FILETYPE_RLP 4 /* .rlp */
#define TVK_FILETYPE_ILP 5 /* .ilp */
#define TVK_FILETYPE_MST 6 /* .mst */
#define TVK_FILETYPE_SOL 7 /* .sol */
#define TVK_FILETYPE_BAS 8 /* .bas */
#define TVK_FILETYPE_PRM 9 /* .prm */
#define TVK_FILETYPE_QPS 10 /* .qps */
#define TVK_FILETYPE_ORD 11 /* .ord */
#define TVK_FILETYPE_SUM 12 /* .sum */
#define TVK_FILETYPE_OPB 13 /* .opb */
#define TVK_FILETYPE_HNT 14 /* .hnt */
#define TVK_FILETYPE_ATTR 15 /* .attr */
#define TVK_FILETYPE_JSON 16 /* .json */
#define TVK_FILETYPE_DUA 17 /* .dua */
#define TVK_FILETYPE_DLP 18 /* .dlp */

/* ---- Other ---- */

#define TVK_VERSION_MAJOR 11 /* version */
#define TVK_VERSION_MINOR 0 /* version */
#define TVK_VERSION_TECHNICAL 3 /* version */
#define TVK_MINIMIZE 1 /* objective sense */
#define TVK_MAXIMIZE (-1) /* objective sense */
#define TVK_SOS_TYPE1 1 /* SOS type */
#define TVK_SOS_TYPE2 2 /* SOS type */
#define TVK_MAX_NAMELEN 255 /* longest name, in characters */
#define TVK_MAX_STRLEN 512 /* size of the fixed string buffers, in bytes */
#define TVK_MAX_CONCURRENT 64 /* concurrent environments of a model, numbered 0 to 63 */
#define TVK_PARTYPE_INT 1 /* result of TVKgetparamtype */
#define TVK_PARTYPE_DBL 2 /* result of TVKgetparamtype */
#define TVK_PARTYPE_STR 3 /* result of TVKgetparamtype */
#define TVK_ATTRTYPE_CHAR 0 /* datatype of TVKgetattrinfo */
#define TVK_ATTRTYPE_INT 1 /* datatype of TVKgetattrinfo */
#define TVK_ATTRTYPE_DBL 2 /* datatype of TVKgetattrinfo */
#define TVK_ATTRTYPE_STR 3 /* datatype of TVKgetattrinfo */
#define TVK_SCOPE_MODEL 0 /* attrtype of TVKgetattrinfo */
#define TVK_SCOPE_VAR 1 /* attrtype of TVKgetattrinfo */
#define TVK_SCOPE_CONSTR 2 /* attrtype of TVKgetattrinfo */
#define TVK_SCOPE_SOS 3 /* attrtype of TVKgetattrinfo */
#define TVK_SCOPE_QCONSTR 4 /* attrtype of TVKgetattrinfo */
#define TVK_SCOPE_GENCONSTR 5 /* attrtype of TVKgetattrinfo */
#define TVK_CBTYPE_INT 1 /* typeP of TVKgetcbwhatinfo */
#define TVK_CBTYPE_DBL 2 /* typeP of TVKgetcbwhatinfo */
#define TVK_CBTYPE_STR 3 /* typeP of TVKgetcbwhatinfo */

/* ---- Parameter names ---- */

#define TVK_DBL_PAR_CUTOFF "Cutoff"
#define TVK_DBL_PAR_ITERATIONLIMIT "IterationLimit"
#define TVK_DBL_PAR_NODELIMIT "NodeLimit"
#define TVK_INT_PAR_SOLUTIONLIMIT "SolutionLimit"
#define TVK_DBL_PAR_TIMELIMIT "TimeLimit"
#define TVK_DBL_PAR_WORKLIMIT "WorkLimit"
#define TVK_DBL_PAR_MEMLIMIT "MemLimit"
#define TVK_DBL_PAR_SOFTMEMLIMIT "SoftMemLimit"
#define TVK_DBL_PAR_BESTOBJSTOP "BestObjStop"
#define TVK_DBL_PAR_BESTBDSTOP "BestBdStop"
#define TVK_DBL_PAR_FEASIBILITYTOL "FeasibilityTol"
#define TVK_DBL_PAR_INTFEASTOL "IntFeasTol"
#define TVK_DBL_PAR_MARKOWITZTOL "MarkowitzTol"
#define TVK_DBL_PAR_MIPGAP "MIPGap"
#define TVK_DBL_PAR_MIPGAPABS "MIPGapAbs"
#define TVK_DBL_PAR_OPTIMALITYTOL "OptimalityTol"
#define TVK_DBL_PAR_PSDTOL "PSDTol"
#define TVK_INT_PAR_METHOD "Method"
#define TVK_INT_PAR_CONCURRENTMETHOD "ConcurrentMethod"
#define TVK_DBL_PAR_PERTURBVALUE "PerturbValue"
#define TVK_DBL_PAR_OBJSCALE "ObjScale"
#define TVK_INT_PAR_SCALEFLAG "ScaleFlag"
#define TVK_INT_PAR_SIMPLEXPRICING "SimplexPricing"
#define TVK_INT_PAR_QUAD "Quad"
#define TVK_INT_PAR_NORMADJUST "NormAdjust"
#define TVK_INT_PAR_SIFTMETHOD "SiftMethod"
#define TVK_INT_PAR_SIFTING "Sifting"
#define TVK_INT_PAR_LPWARMSTART "LPWarmStart"
#define TVK_INT_PAR_NETWORKALG "NetworkAlg"
#define TVK_INT_PAR_BARITERLIMIT "BarIterLimit"
#define TVK_DBL_PAR_BARCONVTOL "BarConvTol"
#define TVK_INT_PAR_BARCORRECTORS "BarCorrectors"
#define TVK_INT_PAR_BARHOMOGENEOUS "BarHomogeneous"
#define TVK_INT_PAR_BARORDER "BarOrder"
#define TVK_DBL_PAR_BARQCPCONVTOL "BarQCPConvTol"
#define TVK_INT_PAR_CROSSOVER "Crossover"
#define TVK_INT_PAR_CROSSOVERBASIS "CrossoverBasis"
#define TVK_INT_PAR_BRANCHDIR "BranchDir"
#define TVK_INT_PAR_DEGENMOVES "DegenMoves"
#define TVK_INT_PAR_DISCONNECTED "Disconnected"
#define TVK_DBL_PAR_HEURISTICS "Heuristics"
#define TVK_INT_PAR_INTEGRALITYFOCUS "IntegralityFocus"
#define TVK_INT_PAR_MINRELNODES "MinRelNodes"
#define TVK_INT_PAR_MIPFOCUS "MIPFocus"
#define TVK_DBL_PAR_NODEFILESTART "NodefileStart"
#define TVK_STR_PAR_NODEFILEDIR "NodefileDir"
#define TVK_INT_PAR_NODEMETHOD "NodeMethod"
#define TVK_DBL_PAR_NORELHEURTIME "NoRelHeurTime"
#define TVK_DBL_PAR_NORELHEURWORK "NoRelHeurWork"
#define TVK_INT_PAR_OBBT "OBBT"
#define TVK_INT_PAR_PUMPPASSES "PumpPasses"
#define TVK_INT_PAR_RINS "RINS"
#define TVK_INT_PAR_NLPHEUR "NLPHeur"
#define TVK_STR_PAR_SOLFILES "SolFiles"
#define TVK_INT_PAR_SOLUTIONNUMBER "SolutionNumber"
#define TVK_INT_PAR_STARTNODELIMIT "StartNodeLimit"
#define TVK_INT_PAR_SUBMIPNODES "SubMIPNodes"
#define TVK_INT_PAR_SYMMETRY "Symmetry"
#define TVK_INT_PAR_VARBRANCH "VarBranch"
#define TVK_INT_PAR_ZEROOBJNODES "ZeroObjNodes"
#define TVK_INT_PAR_CUTS "Cuts"
#define TVK_INT_PAR_CUTPASSES "CutPasses"
#define TVK_INT_PAR_CLIQUECUTS "CliqueCuts"
#define TVK_INT_PAR_COVERCUTS "CoverCuts"
#define TVK_INT_PAR_CUTAGGPASSES "CutAggPasses"
#define TVK_INT_PAR_FLOWCOVERCUTS "FlowCoverCuts"
#define TVK_INT_PAR_FLOWPATHCUTS "FlowPathCuts"
#define TVK_INT_PAR_GOMORYPASSES "GomoryPasses"
#define TVK_INT_PAR_GUBCOVERCUTS "GUBCoverCuts"
#define TVK_INT_PAR_IMPLIEDCUTS "ImpliedCuts"
#define TVK_INT_PAR_PROJIMPLIEDCUTS "ProjImpliedCuts"
#define TVK_INT_PAR_MIPSEPCUTS "MIPSepCuts"
#define TVK_INT_PAR_MIRCUTS "MIRCuts"
#define TVK_INT_PAR_STRONGCGCUTS "StrongCGCuts"
#define TVK_INT_PAR_NETWORKCUTS "NetworkCuts"
#define TVK_INT_PAR_SUBMIPCUTS "SubMIPCuts"
#define TVK_INT_PAR_ZEROHALFCUTS "ZeroHalfCuts"
#define TVK_INT_PAR_MODKCUTS "ModKCuts"
#define TVK_INT_PAR_INFPROOFCUTS "InfProofCuts"
#define TVK_INT_PAR_RLTCUTS "RLTCuts"
#define TVK_INT_PAR_RELAXLIFTCUTS "RelaxLiftCuts"
#define TVK_INT_PAR_BQPCUTS "BQPCuts"
#define TVK_INT_PAR_PSDCUTS "PSDCuts"
#define TVK_INT_PAR_LIFTPROJECTCUTS "LiftProjectCuts"
#define TVK_INT_PAR_MIXINGCUTS "MixingCuts"
#define TVK_STR_PAR_WORKERPOOL "WorkerPool"
#define TVK_STR_PAR_WORKERPASSWORD "WorkerPassword"
#define TVK_STR_PAR_COMPUTESERVER "ComputeServer"
#define TVK_STR_PAR_JOBID "JobID"
#define TVK_STR_PAR_CSROUTER "CSRouter"
#define TVK_STR_PAR_CSGROUP "CSGroup"
#define TVK_DBL_PAR_CSQUEUETIMEOUT "CSQueueTimeout"
#define TVK_STR_PAR_SERVERPASSWORD "ServerPassword"
#define TVK_INT_PAR_SERVERTIMEOUT "ServerTimeout"
#define TVK_STR_PAR_CLOUDACCESSID "CloudAccessID"
#define TVK_STR_PAR_CLOUDSECRETKEY "CloudSecretKey"
#define TVK_STR_PAR_CLOUDPOOL "CloudPool"
#define TVK_STR_PAR_CLOUDHOST "CloudHost"
#define TVK_INT_PAR_CSPRIORITY "CSPriority"
#define TVK_INT_PAR_CSIDLETIMEOUT "CSIdleTimeout"
#define TVK_INT_PAR_CSTLSINSECURE "CSTLSInsecure"
#define TVK_STR_PAR_CSMANAGER "CSManager"
#define TVK_STR_PAR_CSAUTHTOKEN "CSAuthToken"
#define TVK_STR_PAR_CSAPIACCESSID "CSAPIAccessID"
#define TVK_STR_PAR_CSAPISECRET "CSAPISecret"
#define TVK_INT_PAR_CSBATCHMODE "CSBatchMode"
#define TVK_STR_PAR_USERNAME "Username"
#define TVK_STR_PAR_CSAPPNAME "CSAppName"
#define TVK_INT_PAR_CSCLIENTLOG "CSClientLog"
#define TVK_INT_PAR_AGGREGATE "Aggregate"
#define TVK_INT_PAR_AGGFILL "AggFill"
#define TVK_INT_PAR_PREDUAL "PreDual"
#define TVK_INT_PAR_CONCURRENTMIP "ConcurrentMIP"
#define TVK_INT_PAR_CONCURRENTJOBS "ConcurrentJobs"
#define TVK_INT_PAR_DISPLAYINTERVAL "DisplayInterval"
#define TVK_INT_PAR_DISTRIBUTEDMIPJOBS "DistributedMIPJobs"
#define TVK_INT_PAR_DUALREDUCTIONS "DualReductions"
#define TVK_INT_PAR_IISMETHOD "IISMethod"
#define TVK_INT_PAR_INFUNBDINFO "InfUnbdInfo"
#define TVK_INT_PAR_JSONSOLDETAIL "JSONSolDetail"
#define TVK_STR_PAR_LOGFILE "LogFile"
#define TVK_INT_PAR_LOGTOCONSOLE "LogToConsole"
#define TVK_INT_PAR_MIQCPMETHOD "MIQCPMethod"
#define TVK_INT_PAR_NONCONVEX "NonConvex"
#define TVK_INT_PAR_NUMERICFOCUS "NumericFocus"
#define TVK_INT_PAR_QCPDUAL "QCPDual"
#define TVK_INT_PAR_PRECRUSH "PreCrush"
#define TVK_INT_PAR_PREDEPROW "PreDepRow"
#define TVK_INT_PAR_PREQLINEARIZE "PreQLinearize"
#define TVK_INT_PAR_PREPASSES "PrePasses"
#define TVK_INT_PAR_PRESOLVE "Presolve"
#define TVK_DBL_PAR_PRESOS1BIGM "PreSOS1BigM"
#define TVK_DBL_PAR_PRESOS2BIGM "PreSOS2BigM"
#define TVK_INT_PAR_PRESOS1ENCODING "PreSOS1Encoding"
#define TVK_INT_PAR_PRESOS2ENCODING "PreSOS2Encoding"
#define TVK_INT_PAR_PRESPARSIFY "PreSparsify"
#define TVK_INT_PAR_PREMIQCPFORM "PreMIQCPForm"
#define TVK_STR_PAR_RESULTFILE "ResultFile"
#define TVK_INT_PAR_SEED "Seed"
#define TVK_INT_PAR_SOLUTIONTARGET "SolutionTarget"
#define TVK_INT_PAR_THREADS "Threads"
#define TVK_INT_PAR_LAZYCONSTRAINTS "LazyConstraints"
#define TVK_DBL_PAR_FEASRELAXBIGM "FeasRelaxBigM"
#define TVK_DBL_PAR_IMPROVESTARTTIME "ImproveStartTime"
#define TVK_DBL_PAR_IMPROVESTARTGAP "ImproveStartGap"
#define TVK_DBL_PAR_IMPROVESTARTNODES "ImproveStartNodes"
#define TVK_DBL_PAR_TUNETIMELIMIT "TuneTimeLimit"
#define TVK_INT_PAR_TUNERESULTS "TuneResults"
#define TVK_INT_PAR_TUNECRITERION "TuneCriterion"
#define TVK_INT_PAR_TUNETRIALS "TuneTrials"
#define TVK_INT_PAR_TUNEOUTPUT "TuneOutput"
#define TVK_INT_PAR_TUNEJOBS "TuneJobs"
#define TVK_DBL_PAR_TUNECLEANUP "TuneCleanup"
#define TVK_DBL_PAR_TUNETARGETMIPGAP "TuneTargetMIPGap"
#define TVK_DBL_PAR_TUNETARGETTIME "TuneTargetTime"
#define TVK_INT_PAR_TUNEMETRIC "TuneMetric"
#define TVK_INT_PAR_TUNEDYNAMICJOBS "TuneDynamicJobs"
#define TVK_INT_PAR_UPDATEMODE "UpdateMode"
#define TVK_INT_PAR_OBJNUMBER "ObjNumber"
#define TVK_INT_PAR_MULTIOBJMETHOD "MultiObjMethod"
#define TVK_INT_PAR_MULTIOBJPRE "MultiObjPre"
#define TVK_INT_PAR_SCENARIONUMBER "ScenarioNumber"
#define TVK_INT_PAR_RECORD "Record"
#define TVK_INT_PAR_POOLSOLUTIONS "PoolSolutions"
#define TVK_INT_PAR_POOLSEARCHMODE "PoolSearchMode"
#define TVK_DBL_PAR_POOLGAP "PoolGap"
#define TVK_DBL_PAR_POOLGAPABS "PoolGapAbs"
#define TVK_INT_PAR_IGNORENAMES "IgnoreNames"
#define TVK_INT_PAR_STARTNUMBER "StartNumber"
#define TVK_INT_PAR_PARTITIONPLACE "PartitionPlace"
#define TVK_INT_PAR_FUNCPIECES "FuncPieces"
#define TVK_DBL_PAR_FUNCPIECELENGTH "FuncPieceLength"
#define TVK_DBL_PAR_FUNCPIECEERROR "FuncPieceError"
#define TVK_DBL_PAR_FUNCPIECERATIO "FuncPieceRatio"
#define TVK_DBL_PAR_FUNCMAXVAL "FuncMaxVal"
#define TVK_INT_PAR_FUNCNONLINEAR "FuncNonlinear"
#define TVK_STR_PAR_DUMMY "Dummy"
#define TVK_INT_PAR_OUTPUTFLAG "OutputFlag"

/* ---- Attribute names ---- */

#define TVK_INT_ATTR_NUMCONSTRS "NumConstrs"
#define TVK_INT_ATTR_NUMVARS "NumVars"
#define TVK_INT_ATTR_NUMSOS "NumSOS"
#define TVK_INT_ATTR_NUMQCONSTRS "NumQConstrs"
#define TVK_INT_ATTR_NUMGENCONSTRS "NumGenConstrs"
#define TVK_INT_ATTR_NUMNZS "NumNZs"
#define TVK_DBL_ATTR_DNUMNZS "DNumNZs"
#define TVK_INT_ATTR_NUMQNZS "NumQNZs"
#define TVK_INT_ATTR_NUMQCNZS "NumQCNZs"
#define TVK_INT_ATTR_NUMINTVARS "NumIntVars"
#define TVK_INT_ATTR_NUMBINVARS "NumBinVars"
#define TVK_INT_ATTR_NUMPWLOBJVARS "NumPWLObjVars"
#define TVK_STR_ATTR_MODELNAME "ModelName"
#define TVK_INT_ATTR_MODELSENSE "ModelSense"
#define TVK_DBL_ATTR_OBJCON "ObjCon"
#define TVK_INT_ATTR_ISMIP "IsMIP"
#define TVK_INT_ATTR_ISQCP "IsQCP"
#define TVK_INT_ATTR_ISQP "IsQP"
#define TVK_INT_ATTR_ISMULTIOBJ "IsMultiObj"
#define TVK_INT_ATTR_NUMTAGGED "NumTagged"
#define TVK_INT_ATTR_IISMINIMAL "IISMinimal"
#define TVK_INT_ATTR_INFEASVAR "InfeasVar"
#define TVK_INT_ATTR_UNBDVAR "UnbdVar"
#define TVK_DBL_ATTR_FARKASPROOF "FarkasProof"
#define TVK_DBL_ATTR_LB "LB"
#define TVK_DBL_ATTR_UB "UB"
#define TVK_DBL_ATTR_OBJ "Obj"
#define TVK_CHAR_ATTR_VTYPE "VType"
#define TVK_DBL_ATTR_START "Start"
#define TVK_DBL_ATTR_PSTART "PStart"
#define TVK_INT_ATTR_BRANCHPRIORITY "BranchPriority"
#define TVK_STR_ATTR_VTAG "VTag"
#define TVK_STR_ATTR_VARNAME "VarName"
#define TVK_INT_ATTR_PWLOBJCVX "PWLObjCvx"
#define TVK_DBL_ATTR_VARHINTVAL "VarHintVal"
#define TVK_INT_ATTR_VARHINTPRI "VarHintPri"
#define TVK_INT_ATTR_PARTITION "Partition"
#define TVK_INT_ATTR_POOLIGNORE "PoolIgnore"
#define TVK_INT_ATTR_NUMSTART "NumStart"
#define TVK_STR_ATTR_CTAG "CTag"
#define TVK_DBL_ATTR_RHS "RHS"
#define TVK_DBL_ATTR_DSTART "DStart"
#define TVK_CHAR_ATTR_SENSE "Sense"
#define TVK_STR_ATTR_CONSTRNAME "ConstrName"
#define TVK_INT_ATTR_LAZY "Lazy"
#define TVK_STR_ATTR_QCTAG "QCTag"
#define TVK_DBL_ATTR_QCRHS "QCRHS"
#define TVK_CHAR_ATTR_QCSENSE "QCSense"
#define TVK_STR_ATTR_QCNAME "QCName"
#define TVK_INT_ATTR_GENCONSTRTYPE "GenConstrType"
#define TVK_STR_ATTR_GENCONSTRNAME "GenConstrName"
#define TVK_INT_ATTR_FUNCPIECES "FuncPieces"
#define TVK_DBL_ATTR_FUNCPIECEERROR "FuncPieceError"
#define TVK_DBL_ATTR_FUNCPIECELENGTH "FuncPieceLength"
#define TVK_DBL_ATTR_FUNCPIECERATIO "FuncPieceRatio"
#define TVK_INT_ATTR_FUNCNONLINEAR "FuncNonlinear"
#define TVK_DBL_ATTR_OBJN "ObjN"
#define TVK_DBL_ATTR_OBJNCON "ObjNCon"
#define TVK_DBL_ATTR_OBJNWEIGHT "ObjNWeight"
#define TVK_INT_ATTR_OBJNPRIORITY "ObjNPriority"
#define TVK_DBL_ATTR_OBJNRELTOL "ObjNRelTol"
#define TVK_DBL_ATTR_OBJNABSTOL "ObjNAbsTol"
#define TVK_STR_ATTR_OBJNNAME "ObjNName"
#define TVK_INT_ATTR_NUMOBJ "NumObj"
#define TVK_DBL_ATTR_SCENNLB "ScenNLB"
#define TVK_DBL_ATTR_SCENNUB "ScenNUB"
#define TVK_DBL_ATTR_SCENNOBJ "ScenNObj"
#define TVK_DBL_ATTR_SCENNRHS "ScenNRHS"
#define TVK_STR_ATTR_SCENNNAME "ScenNName"
#define TVK_DBL_ATTR_SCENNX "ScenNX"
#define TVK_DBL_ATTR_SCENNOBJBOUND "ScenNObjBound"
#define TVK_DBL_ATTR_SCENNOBJVAL "ScenNObjVal"
#define TVK_INT_ATTR_NUMSCENARIOS "NumScenarios"
#define TVK_INT_ATTR_FINGERPRINT "Fingerprint"
#define TVK_DBL_ATTR_MAXCOEFF "MaxCoeff"
#define TVK_DBL_ATTR_MINCOEFF "MinCoeff"
#define TVK_DBL_ATTR_MAXBOUND "MaxBound"
#define TVK_DBL_ATTR_MINBOUND "MinBound"
#define TVK_DBL_ATTR_MAXOBJCOEFF "MaxObjCoeff"
#define TVK_DBL_ATTR_MINOBJCOEFF "MinObjCoeff"
#define TVK_DBL_ATTR_MAXRHS "MaxRHS"
#define TVK_DBL_ATTR_MINRHS "MinRHS"
#define TVK_DBL_ATTR_MAXQCCOEFF "MaxQCCoeff"
#define TVK_DBL_ATTR_MINQCCOEFF "MinQCCoeff"
#define TVK_DBL_ATTR_MAXQOBJCOEFF "MaxQObjCoeff"
#define TVK_DBL_ATTR_MINQOBJCOEFF "MinQObjCoeff"
#define TVK_DBL_ATTR_MAXQCLCOEFF "MaxQCLCoeff"
#define TVK_DBL_ATTR_MINQCLCOEFF "MinQCLCoeff"
#define TVK_DBL_ATTR_MAXQCRHS "MaxQCRHS"
#define TVK_DBL_ATTR_MINQCRHS "MinQCRHS"
#define TVK_DBL_ATTR_RUNTIME "Runtime"
#define TVK_DBL_ATTR_WORK "Work"
#define TVK_DBL_ATTR_RUNVTIME "RunVTime"
#define TVK_DBL_ATTR_X "X"
#define TVK_DBL_ATTR_XN "Xn"
#define TVK_DBL_ATTR_BARX "BarX"
#define TVK_DBL_ATTR_RC "RC"
#define TVK_DBL_ATTR_SLACK "Slack"
#define TVK_DBL_ATTR_QCSLACK "QCSlack"
#define TVK_DBL_ATTR_PI "Pi"
#define TVK_DBL_ATTR_QCPI "QCPi"
#define TVK_DBL_ATTR_VDUALNORM "VDualNorm"
#define TVK_DBL_ATTR_CDUALNORM "CDualNorm"
#define TVK_INT_ATTR_HASDUALNORM "HasDualNorm"
#define TVK_INT_ATTR_VBASIS "VBasis"
#define TVK_INT_ATTR_CBASIS "CBasis"
#define TVK_INT_ATTR_STATUS "Status"
#define TVK_INT_ATTR_CONCURRENTWINMETHOD "ConcurrentWinMethod"
#define TVK_INT_ATTR_SOLCOUNT "SolCount"
#define TVK_DBL_ATTR_OBJNVAL "ObjNVal"
#define TVK_DBL_ATTR_OBJVAL "ObjVal"
#define TVK_DBL_ATTR_OBJBOUND "ObjBound"
#define TVK_DBL_ATTR_OBJBOUNDC "ObjBoundC"
#define TVK_DBL_ATTR_POOLOBJBOUND "PoolObjBound"
#define TVK_DBL_ATTR_POOLOBJVAL "PoolObjVal"
#define TVK_DBL_ATTR_MIPGAP "MIPGap"
#define TVK_DBL_ATTR_ITERCOUNT "IterCount"
#define TVK_DBL_ATTR_ITERCOUNT0 "IterCount0"
#define TVK_DBL_ATTR_NODECOUNT "NodeCount"
#define TVK_DBL_ATTR_OPENNODECOUNT "OpenNodeCount"
#define TVK_DBL_ATTR_TOPEN "TOpen"
#define TVK_INT_ATTR_BARITERCOUNT "BarIterCount"
#define TVK_INT_ATTR_CONCURRENTWINNER "ConcurrentWinner"
#define TVK_DBL_ATTR_MAXVIO "MaxVio"
#define TVK_DBL_ATTR_BOUNDVIO "BoundVio"
#define TVK_DBL_ATTR_BOUNDSVIO "BoundSVio"
#define TVK_DBL_ATTR_CONSTRVIO "ConstrVio"
#define TVK_DBL_ATTR_CONSTRSVIO "ConstrSVio"
#define TVK_DBL_ATTR_CONSTRRESIDUAL "ConstrResidual"
#define TVK_DBL_ATTR_CONSTRSRESIDUAL "ConstrSResidual"
#define TVK_DBL_ATTR_DUALVIO "DualVio"
#define TVK_DBL_ATTR_DUALSVIO "DualSVio"
#define TVK_DBL_ATTR_DUALRESIDUAL "DualResidual"
#define TVK_DBL_ATTR_DUALSRESIDUAL "DualSResidual"
#define TVK_DBL_ATTR_INTVIO "IntVio"
#define TVK_DBL_ATTR_COMPLVIO "ComplVio"
#define TVK_DBL_ATTR_BOUNDVIOSUM "BoundVioSum"
#define TVK_DBL_ATTR_BOUNDSVIOSUM "BoundSVioSum"
#define TVK_DBL_ATTR_CONSTRVIOSUM "ConstrVioSum"
#define TVK_DBL_ATTR_CONSTRSVIOSUM "ConstrSVioSum"
#define TVK_DBL_ATTR_CONSTRRESIDUALSUM "ConstrResidualSum"
#define TVK_DBL_ATTR_CONSTRSRESIDUALSUM "ConstrSResidualSum"
#define TVK_DBL_ATTR_DUALVIOSUM "DualVioSum"
#define TVK_DBL_ATTR_DUALSVIOSUM "DualSVioSum"
#define TVK_DBL_ATTR_DUALRESIDUALSUM "DualResidualSum"
#define TVK_DBL_ATTR_DUALSRESIDUALSUM "DualSResidualSum"
#define TVK_DBL_ATTR_INTVIOSUM "IntVioSum"
#define TVK_DBL_ATTR_COMPLVIOSUM "ComplVioSum"
#define TVK_DBL_ATTR_KAPPA "Kappa"
#define TVK_DBL_ATTR_KAPPAEXACT "KappaExact"
#define TVK_DBL_ATTR_N2KAPPA "N2Kappa"
#define TVK_INT_ATTR_BOUNDVIOINDEX "BoundVioIndex"
#define TVK_INT_ATTR_BOUNDSVIOINDEX "BoundSVioIndex"
#define TVK_INT_ATTR_CONSTRVIOINDEX "ConstrVioIndex"
#define TVK_INT_ATTR_CONSTRSVIOINDEX "ConstrSVioIndex"
#define TVK_INT_ATTR_CONSTRRESIDUALINDEX "ConstrResidualIndex"
#define TVK_INT_ATTR_CONSTRSRESIDUALINDEX "ConstrSResidualIndex"
#define TVK_INT_ATTR_DUALVIOINDEX "DualVioIndex"
#define TVK_INT_ATTR_DUALSVIOINDEX "DualSVioIndex"
#define TVK_INT_ATTR_DUALRESIDUALINDEX "DualResidualIndex"
#define TVK_INT_ATTR_DUALSRESIDUALINDEX "DualSResidualIndex"
#define TVK_INT_ATTR_INTVIOINDEX "IntVioIndex"
#define TVK_INT_ATTR_COMPLVIOINDEX "ComplVioIndex"
#define TVK_DBL_ATTR_FIRSTSOLNODE "FirstSolNode"
#define TVK_DBL_ATTR_SAOBJLOW "SAObjLow"
#define TVK_DBL_ATTR_SAOBJUP "SAObjUp"
#define TVK_DBL_ATTR_SALBLOW "SALBLow"
#define TVK_DBL_ATTR_SALBUP "SALBUp"
#define TVK_DBL_ATTR_SAUBLOW "SAUBLow"
#define TVK_DBL_ATTR_SAUBUP "SAUBUp"
#define TVK_DBL_ATTR_SARHSLOW "SARHSLow"
#define TVK_DBL_ATTR_SARHSUP "SARHSUp"
#define TVK_INT_ATTR_IISLB "IISLB"
#define TVK_INT_ATTR_IISUB "IISUB"
#define TVK_INT_ATTR_IISCONSTR "IISConstr"
#define TVK_INT_ATTR_IISSOS "IISSOS"
#define TVK_INT_ATTR_IISQCONSTR "IISQConstr"
#define TVK_INT_ATTR_IISGENCONSTR "IISGenConstr"
#define TVK_DBL_ATTR_FARKASDUAL "FarkasDual"
#define TVK_DBL_ATTR_UNBDRAY "UnbdRay"
#define TVK_INT_ATTR_IISLBFORCE "IISLBForce"
#define TVK_INT_ATTR_IISUBFORCE "IISUBForce"
#define TVK_INT_ATTR_IISCONSTRFORCE "IISConstrForce"
#define TVK_INT_ATTR_IISSOSFORCE "IISSOSForce"
#define TVK_INT_ATTR_IISQCONSTRFORCE "IISQConstrForce"
#define TVK_INT_ATTR_IISGENCONSTRFORCE "IISGenConstrForce"
#define TVK_INT_ATTR_TUNERESULTCOUNT "TuneResultCount"
#define TVK_INT_ATTR_VARPRESTAT "VarPreStat"
#define TVK_DBL_ATTR_PREFIXVAL "PreFixVal"

#ifdef __cplusplus
}
#endif

#endif
