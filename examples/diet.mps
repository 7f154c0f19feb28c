* The cheapest day's food that holds what the body needs: six foods, in portions.
* Rows count per day; every food has a cost in euros and an upper limit that keeps the menu
* edible.
NAME          DIET
ROWS
 N  COST
 G  ENERGY
 G  PROTEIN
 G  CALCIUM
 G  VITAMINC
COLUMNS
    OATMEAL   COST            0.30   ENERGY         110.0
    OATMEAL   PROTEIN         4.0    CALCIUM         2.0
    CHICKEN   COST            2.40   ENERGY         205.0
    CHICKEN   PROTEIN        32.0    CALCIUM        12.0
    EGGS      COST            1.30   ENERGY         160.0
    EGGS      PROTEIN        13.0    CALCIUM        54.0
    MILK      COST            0.90   ENERGY         160.0
    MILK      PROTEIN         8.0    CALCIUM       285.0
    CABBAGE   COST            0.35   ENERGY          25.0
    CABBAGE   PROTEIN         1.5    CALCIUM        40.0
    CABBAGE   VITAMINC       36.0
    BEANS     COST            0.80   ENERGY         260.0
    BEANS     PROTEIN        14.0    CALCIUM        80.0
RHS
    RHS       ENERGY       2000.0    PROTEIN        55.0
    RHS       CALCIUM       800.0    VITAMINC       90.0
BOUNDS
 UP BND       OATMEAL         4.0
 UP BND       CHICKEN         3.0
 UP BND       EGGS            2.0
 UP BND       MILK            8.0
 UP BND       CABBAGE         5.0
 UP BND       BEANS           4.0
ENDATA
