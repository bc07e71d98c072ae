#include "qsl/ui/services.h"
