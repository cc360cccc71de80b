#pragma once

// Marks what the library offers to other shared objects; all else stays hidden.
#define QEXCORE_API __attribute__((visibility("default")))
