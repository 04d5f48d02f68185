// Where lines go: the terminal and the open units of the file set.
#pragma once

#include <cstdio>

#include "records/table1.h"
#include "records/text_unit.h"
#include "records/units.h"

namespace corvinet {

// The terminal and where console lines go.
struct ConsoleState {
  int ConsoleUnit = Unit::Console;  // 6: the terminal; otherwise an open unit (the cyclic log)
  std::FILE* out = stdout;
  std::FILE* in = stdin;
};

// The open units and the naming state of the file set.
struct FileSet {
  Table1<TextUnit, Unit::Count> units;
  bool multiPattern = false;  // set once by the first multi-pattern control file, never cleared
  bool hklFromFile = false;
};

// The console and the units together: all that writing a line needs.
struct Channels {
  ConsoleState console;
  FileSet files;
};

}  // namespace corvinet
