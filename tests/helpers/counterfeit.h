#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

namespace vexa::tests {

/// The position of the last entry of a counterfeit's table that was called; -1 for none.
inline int lastSlot = -1;

template <int Position>
std::intptr_t recordSlot() {
  lastSlot = Position;
  return 0;
}

template <int... Positions>
constexpr auto makeRecordingTable(std::integer_sequence<int, Positions...>) {
  return std::array<std::intptr_t (*)(), sizeof...(Positions)>{&recordSlot<Positions>...};
}

/// An object that is nothing but a pointer to a table of functions, each of which records its
/// position: what a host compiled elsewhere looks like to the library.
struct Counterfeit {
  const void* mTable;
};

/// The position in the table that `call` reaches through an Interface; -1 when it reaches none.
///
/// The call must not look at a result other than integers and pointers, which are 0. The object has
/// no type information: compile with -fno-sanitize=vptr.
template <class Interface, class Call>
int slotReached(Call call) {
  // Larger than any interface; one table serves all.
  static const auto table = makeRecordingTable(std::make_integer_sequence<int, 80>{});
  static Counterfeit counterfeit{table.data()};
  void* volatile hidden = &counterfeit;  // or the compiler would see through the pretence
  lastSlot = -1;
  call(*static_cast<Interface*>(static_cast<std::remove_const_t<Interface>*>(hidden)));
  return lastSlot;
}

}  // namespace vexa::tests
