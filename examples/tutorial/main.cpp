#include "IGreeter.h"
int main() { lyr::Create<IGreeter>("Greeter")->Greet("world"); }
