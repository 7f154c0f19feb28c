// LAPACK, loaded when it is first asked for: most solves need none, and OpenBLAS starts threads
// while it is loaded that spin for a tenth of a second.
#pragma once

namespace tarvik::lapack {

// LU factorization with partial pivoting, as the reference interface has it.
using Getrf = void (*)(const int *m, const int *n, double *a, const int *lda, int *ipiv, int *info);

// Null where no library is installed. An OpenBLAS that is loaded here works in the caller's thread
// only; one that the process has already is left as its owner has set it up.
Getrf getrf();

}  // namespace tarvik::lapack
