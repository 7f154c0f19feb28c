NAME features
ROWS
 N  OBJ
 L  c1
 G  c2
 E  c3
 L  qc1
LAZYCONS 2
 L  l1
USERCUTS
 L  u1
COLUMNS
    M0  'MARKER'  'INTORG'
    i  OBJ 1 c1 1
    b  c1 2 u1 1
    M1  'MARKER'  'INTEND'
    x  OBJ 1.5 c2 1
    x  c3 1 qc1 1
    y  OBJ -2 l1 1
    z  c3 1e-3
    s  c3 1
RHS
    RHS1  OBJ -3
    RHS1  c1 4 c2 1
RANGES
    RNG  c1 3 c3 -2
BOUNDS
 UP BND1 i 5
 BV BND1 b
 MI BND1 y
 FR BND1 z
 SC BND1 s 9
SOS
 S1 s0
    x  1
    y  2
QUADOBJ
    x  x  1
    x  y  -1
QCMATRIX qc1
    x  x  1
    x  y  0.5
    y  x  0.5
INDICATORS
 IF c2 b 1
GENCONS
 MAX g0
    y
    x
    z
    1
PWLOBJ
    z 0 0
    z 1 2
ENDATA
