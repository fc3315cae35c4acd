#include "Records/Edit.h"
