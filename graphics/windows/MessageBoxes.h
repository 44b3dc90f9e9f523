// The buttons of message boxes and what each answers.
#pragma once

enum EBoxResult { kBoxNotShown = 0, kBoxOK = 1, kBoxCancel = 2, kBoxYes = 6, kBoxNo = 7 };

struct BoxButton {
  const char* text;
  EBoxResult result;
};

struct BoxType {
  int type;
  BoxButton buttons[3];  // in order; a null text ends them
  EBoxResult dismissed;
};

// An unknown type has one button, OK.
const BoxType& BoxTypeOf(int type);
