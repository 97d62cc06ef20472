#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

namespace vexa::importer {

/// Gives each item a name of its own; items without one are called `nameless` and their number.
template <class Item>
void makeNamesUnique(std::vector<Item>& ioItems, const std::string& nameless) {
  std::set<std::string> taken;
  std::map<std::string, int> numbers;  // the last one given behind a name
  for (std::size_t i = 0; i < ioItems.size(); ++i) {
    std::string& name = ioItems[i].mName;
    if (name.empty()) name = nameless + std::to_string(i + 1);
    const std::string stem = name;
    int& number = numbers.try_emplace(stem, 1).first->second;
    while (!taken.insert(name).second) name = stem + "_" + std::to_string(++number);
  }
}

}  // namespace vexa::importer
