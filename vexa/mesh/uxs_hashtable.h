#pragma once

#include <new>

#include "vexa/Export.h"
#include "vexa/math/TBox3D.h"
#include "vexa/math/TVector3D.h"
#include "vexa/mesh/uxs_array.h"

namespace UXS {

/// A chained hash table with a fixed number of buckets; entries are added, never removed singly.
///
/// All entries lie in one array in the order of insertion. A bucket holds the index of its newest
/// entry and each entry the index of the one before it in its bucket; there is no rehashing, so a
/// lookup takes time in proportion to entries per bucket. Nothing here throws but operator[].
/// References and pointers to values hold until the next insertion.
///
/// The default functions exist for keys of three floats with unsigned values and for unsigned keys
/// with boxes; other tables bring their own.
template <class K, class V>
class VEXA_EXPORT uxs_hashtable {
 public:
  using HashFunction = unsigned int (*)(const K&);
  using EqualFunction = bool (*)(const K&, const K&);

  /// No entry: the head of an empty bucket, the end of a chain.
  static constexpr unsigned int kNone = 0xFFFFFFFF;
  static constexpr unsigned int kInitialCells = 1024;

  struct cell {
    K key{};
    V value{};
    unsigned int next = kNone;
  };

  /// A count of 0 makes one bucket.
  explicit uxs_hashtable(unsigned int bucketCount, HashFunction hash = default_hashfunc,
                         EqualFunction equal = default_equalfunc);
  uxs_hashtable(const uxs_hashtable&) = delete;
  uxs_hashtable& operator=(const uxs_hashtable&) = delete;
  virtual ~uxs_hashtable() = default;

  /// The newest value under this key, or null.
  const V* find(const K& key) const;
  /// Adds an entry without looking for an equal key: the newest of several is found first. A null
  /// value adds a value-initialised one. Gives null when growing failed.
  ///
  /// Required behaviour: a failed growth still counts as an insertion and makes the last entry the
  /// head of the bucket.
  cell* link_cell(const K& key, const V* value);
  /// The newest value under this key; an absent one is added, value-initialised.
  /// Throws std::bad_alloc when growing failed.
  V& operator[](const K& key);

  /// Makes room for n entries in all, so that no insertion up to there fails. False, with nothing
  /// done, when it cannot be had.
  bool reserve(unsigned int n) {
    return mBuckets.size() != 0 && (n <= mCells.capacity() || mCells.reserve(n));
  }
  /// Forgets all entries; the buckets stay.
  void clear();
  /// Insertions performed, failed ones included.
  unsigned int count() const { return mCount; }
  unsigned int bucketCount() const { return mBuckets.size(); }
  /// All entries, in the order of insertion.
  const uxs_array<cell, unsigned int>& cells() const { return mCells; }

  static unsigned int default_hashfunc(const K& key);
  static bool default_equalfunc(const K& a, const K& b);

 private:
  const cell* findCell(const K& key) const;

  uxs_array<unsigned int, unsigned int> mBuckets;
  uxs_array<cell, unsigned int> mCells;
  unsigned int mCount = 0;
  HashFunction mHashFunction;
  EqualFunction mEqualFunction;
};

template <class K, class V>
uxs_hashtable<K, V>::uxs_hashtable(unsigned int bucketCount, HashFunction hash, EqualFunction equal)
    : mHashFunction(hash), mEqualFunction(equal) {
  mBuckets.assign(bucketCount == 0 ? 1 : bucketCount, kNone);
  mCells.reserve(kInitialCells);
}

template <class K, class V>
const V* uxs_hashtable<K, V>::find(const K& key) const {
  const cell* const found = findCell(key);
  return found == nullptr ? nullptr : &found->value;
}

template <class K, class V>
typename uxs_hashtable<K, V>::cell* uxs_hashtable<K, V>::link_cell(const K& key, const V* value) {
  if (mBuckets.size() == 0) return nullptr;  // there was no memory for the buckets
  unsigned int& head = mBuckets[mHashFunction(key) % mBuckets.size()];
  cell* added = nullptr;
  try {
    added = mCells.push_back({key, value == nullptr ? V() : *value, head});
  } catch (...) {  // from a key or value of the host's; the same as a failed growth
  }
  head = mCells.size() - 1;
  ++mCount;
  return added;
}

template <class K, class V>
V& uxs_hashtable<K, V>::operator[](const K& key) {
  if (const V* const found = find(key)) return const_cast<V&>(*found);
  cell* const added = link_cell(key, nullptr);
  if (added == nullptr) throw std::bad_alloc();
  return added->value;
}

template <class K, class V>
void uxs_hashtable<K, V>::clear() {
  mBuckets.assign(mBuckets.size(), kNone);
  mCells.clear();
  mCount = 0;
}

template <class K, class V>
const typename uxs_hashtable<K, V>::cell* uxs_hashtable<K, V>::findCell(const K& key) const {
  if (mBuckets.size() == 0) return nullptr;
  unsigned int i = mBuckets[mHashFunction(key) % mBuckets.size()];
  while (i != kNone && !mEqualFunction(mCells[i].key, key)) i = mCells[i].next;
  return i == kNone ? nullptr : &mCells[i];
}

/// Hash of a position: h = h * 33 + b over bytes 0, 2, 4, 6, 8, 10 of its three little-endian
/// floats, from h = the first.
/// Required behaviour: odd bytes are skipped; positions that differ only there share a bucket.
template <>
VEXA_EXPORT unsigned int uxs_hashtable<Oru::TVector3D<float>, unsigned int>::default_hashfunc(
    const Oru::TVector3D<float>& key);
/// Exact comparison of x, then y, then z: 0.0 equals -0.0, NaN equals nothing.
template <>
VEXA_EXPORT bool uxs_hashtable<Oru::TVector3D<float>, unsigned int>::default_equalfunc(
    const Oru::TVector3D<float>& a, const Oru::TVector3D<float>& b);
/// Hash of a material id: byte 0 * 33 + byte 2.
/// Required behaviour: odd bytes are skipped.
template <>
VEXA_EXPORT unsigned int uxs_hashtable<unsigned int, Oru::TBox3D<float>>::default_hashfunc(
    const unsigned int& key);
template <>
VEXA_EXPORT bool uxs_hashtable<unsigned int, Oru::TBox3D<float>>::default_equalfunc(
    const unsigned int& a, const unsigned int& b);

extern template class uxs_hashtable<Oru::TVector3D<float>, unsigned int>;
extern template class uxs_hashtable<unsigned int, Oru::TBox3D<float>>;
extern template class uxs_array<uxs_hashtable<Oru::TVector3D<float>, unsigned int>::cell,
                                unsigned int>;
extern template class uxs_array<uxs_hashtable<unsigned int, Oru::TBox3D<float>>::cell,
                                unsigned int>;

}  // namespace UXS
