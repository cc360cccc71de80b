#pragma once

// Marks what the core library offers to other shared objects; all else stays hidden.
#define VELMORA_CORE_API __attribute__((visibility("default")))
