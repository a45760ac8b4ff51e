// benchmarks/main.cpp: the program of a family that needs nothing of its own.
#include "benchmarks/family.h"

int main(int argc, char** argv) { return orbbench::run_family(argc, argv); }
