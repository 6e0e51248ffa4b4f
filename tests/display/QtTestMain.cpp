#include "tests/support/QtTestMain.h"
