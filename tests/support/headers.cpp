// tests/support/headers.cpp: a source for the headers that are compiled once for all tests.
