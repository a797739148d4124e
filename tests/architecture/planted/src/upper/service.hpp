// An upper module that may use the lower one.
#pragma once

#include <vector>

#include "lower/record.hpp"
