// The lists a right click fills: each entry of a menu list gets the next id of
// one counter, and the map from id to payload is how a later choice finds the
// entry again. Ids ascend through the lists, so the first key of each map marks
// where the list before it ends.
#pragma once

#include <map>

namespace tavlet::content {

template <class Payload>
using IdMap = std::map<int, Payload>;

// The one entry of a list that found nothing; every list the menu shows has at
// least this entry, since the dispatcher's range test depends on it.
inline constexpr const char kNotFound[] = "没有找到";

}  // namespace tavlet::content
