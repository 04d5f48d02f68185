// Range checks of values read from control and data lines, reported with the line and a caret.
#pragma once

#include <span>
#include <string_view>

#include "format/fortran_format.h"
#include "io/field_reader.h"
#include "records/job.h"

namespace corvinet {

// The largest magnitude of any integer field: larger values are refused
// before they are used, so that no sign change or increment can overflow.
constexpr int kLargestIntegerField = 99999999;

// The last column (from 1) of field `field` (from 1) of a line whose field list
// is `format` ("(I4,F8.0,2X,A4)"); 0 when the list has fewer fields.
int FieldLastColumn(std::string_view format, int field);

// The checks every line read under a mask gets: integers within
// kLargestIntegerField, reals finite. A value that fails stops the run with
// the line, a caret under the field and the line's number.
void CheckReadValues(Job& job, const FieldLine& read, std::span<const ReadTarget> targets);

// Stops the run on field `field` of `read`: the words, the line with the
// caret under the field, and the box with the line number.
[[noreturn]] void StopOnField(Job& job, const FieldLine& read, int field, std::string_view words);

// An integer of field `field` that its use limits to low..high; `name` is its
// header word in the file.
void CheckIntegerField(Job& job, const FieldLine& read, int field, std::string_view name, int value,
                       int low, int high);

}  // namespace corvinet
