#pragma once

#include <string>

#include <VelmoraCore/Event.h>

namespace Storefront {

// One line for people: number, type, source, name, and the data in the manner of JSON. Data that
// nest deeper than eight levels are cut short with "...".
std::string TextOf(const Velmora::Event& event);

}  // namespace Storefront
