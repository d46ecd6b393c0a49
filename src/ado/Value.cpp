#include "ado/Value.h"
