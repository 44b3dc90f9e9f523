// The kinds of message boxes.
#include "graphics/windows/MessageBoxes.h"

namespace {

constexpr BoxType kBoxTypes[] = {
    {0, {{"OK", kBoxOK}}, kBoxOK},
    {1, {{"OK", kBoxOK}, {"Cancel", kBoxCancel}}, kBoxCancel},
    {3, {{"Yes", kBoxYes}, {"No", kBoxNo}, {"Cancel", kBoxCancel}}, kBoxCancel},
    {4, {{"Yes", kBoxYes}, {"No", kBoxNo}}, kBoxNo},
};

}  // namespace

const BoxType& BoxTypeOf(int type) {
  for (const BoxType& row : kBoxTypes) {
    if (row.type == type) return row;
  }
  return kBoxTypes[0];
}
