NAME example
OBJSENSE MAX
ROWS
 N  OBJ
 L  c1
 G  c2
COLUMNS
    MARKER    'MARKER'                 'INTORG'
    x         OBJ       3
    x         c1        1
    MARKER    'MARKER'                 'INTEND'
    y         OBJ       2
    y         c1        1
    y         c2        1
RHS
    RHS1      OBJ       -10
    RHS1      c1        4
    RHS1      c2        1
RANGES
    RNG       c1        3
BOUNDS
 LI BND1      x         0
 UP BND1      y         2.5
QUADOBJ
    y         y         -2
ENDATA
