static const int thrown = []() -> int { throw 7; }();
