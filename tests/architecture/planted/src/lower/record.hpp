// A lower module that reaches up into a module that depends on it.
#pragma once

#include "upper/service.hpp"
