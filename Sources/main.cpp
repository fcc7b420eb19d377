//===- main.cpp - nbtext: notebooks to plain text or HTML -----------------===//
#include "NbtextDriver.h"

int main(int argc, char** argv) { return RunNbtext(argc, argv); }
