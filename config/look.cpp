#include "config/look.h"

namespace halvenor {}
