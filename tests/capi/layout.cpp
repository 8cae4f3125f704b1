#include "capi/layout.h"
