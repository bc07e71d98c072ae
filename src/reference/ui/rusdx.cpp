#include "reference/ui/services.h"
