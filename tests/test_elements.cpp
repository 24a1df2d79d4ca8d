#include <gtest/gtest.h>

#include "StreamBuilder.h"
