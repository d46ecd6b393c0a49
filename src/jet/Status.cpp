#include "jet/Status.h"
