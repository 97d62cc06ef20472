#pragma once

namespace UxZel {

/// The host's indexed list of objects of type T.
///
/// The host owns the list and its elements; the library keeps neither beyond a call, except where
/// an operation says so. Positions of virtual operations are fixed.
template <class T>
class TZelObjectMgr {
 public:
  virtual void reserved0() {}
  virtual void reserved1() {}
  virtual void reserved2() {}
  virtual void reserved3() {}
  virtual void reserved4() {}
  virtual void reserved5() {}
  virtual void reserved6() {}
  virtual void reserved7() {}

  /// 8: number of elements; 0 or less means empty.
  virtual int GetCount() const = 0;
  /// 9: removes the element at an index, 0-based; called by the path agent only.
  virtual void RemoveAt(unsigned int index) = 0;
  virtual void reserved10() {}
  virtual void reserved11() {}
  virtual void reserved12() {}

  /// 13: the element at an index, 0-based, 0 to GetCount() - 1. Only Bezier points may be null.
  virtual T* GetAt(int index) const = 0;
  /// 14: inserts a new element at an index, 0-based; called by the path agent only.
  virtual void InsertAt(unsigned int index) = 0;

 protected:
  ~TZelObjectMgr() = default;
};

}  // namespace UxZel
