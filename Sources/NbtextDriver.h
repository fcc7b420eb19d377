//===- NbtextDriver.h - The nbtext command: arguments, files, status ------===//
#pragma once

/// Runs the nbtext command with the arguments of main and gives its exit
/// status: 0 when everything converted, 1 when a file did not open, 255
/// when a document was refused (whatever else happened). See docs/nbtext.1.
int RunNbtext(int argc, char** argv);
