#pragma once

#include "vexa/Export.h"
#include "vexa/host/CZelPoint.h"
#include "vexa/host/CZelUUID.h"
#include "vexa/host/CZelVector.h"
#include "vexa/host/IZelAnimatedObject.h"
#include "vexa/host/IZelInterpolatedValue.h"
#include "vexa/host/IZelKeyFrame.h"
#include "vexa/host/IZelMgr.h"
#include "vexa/host/IZelObjectInstance.h"
#include "vexa/host/IZelPolygon.h"
#include "vexa/host/IZelZelObjectDefinition.h"
#include "vexa/host/TZelObjectMgr.h"
#include "vexa/math/TVector3D.h"

namespace UXS {
class Mesh;
}

namespace Norvel::Vexa {

/// The animation manager: gives a host the value of a property, and the pose and place of an
/// animated object, at a frame.
///
/// Host objects are borrowed for the call; of an animated object, only the address is remembered.
/// The scene's object `mgr` and the objects asked about must not be null unless said otherwise.
/// No locks: one manager serves one thread at a time. The order of the virtual operations is fixed.
class VEXA_EXPORT XIAnimationMgr {
 public:
  using uValue = UxZel::IZelKeyFrame::uValue;

  /// A new manager, to be ended by Delete(); null, with a line on the standard error stream, when
  /// there is no memory for it. Nothing is thrown.
  static XIAnimationMgr* Create();

  /// Delete() for a manager that may be null, which is then left alone.
  static void Destroy(XIAnimationMgr* manager) {
    if (manager != nullptr) manager->Delete();
  }

  /// Forgets an animated object and every instance registered with it; false for one that is not
  /// known. Call it before the object is freed: the manager knows objects by their address, and a
  /// new one at the same address would get the old one's mesh. Mesh and frame data stay in memory.
  /// No virtual operation, because their order is fixed.
  static bool ForgetAnimatedObject(XIAnimationMgr* manager,
                                   const UxZel::IZelAnimatedObject* object);

  /// Destroys the manager. Meshes and frame data of registered objects stay where they are.
  virtual void Delete() = 0;

  /// The value of a property at a frame (0 or later), all 24 bytes; bytes that the value's type
  /// does not use are 0.
  ///
  ///   positions (kinds 1, 38, 59)  three doubles, on the path that the value names. When given,
  ///                                `outDirection` receives the direction there; with `rate`, the
  ///                                direction is towards the place *rate scene units further on
  ///   frame numbers (kind 140)     one integer; `rate` is the number of frames of the object's own
  ///                                animation, which plays once from the first key to the second;
  ///                                0 without `rate` and up to the first key
  ///   any other kind               the value between the two keys around the frame (uxInterpolate)
  ///
  /// Keys may come in any order; those at frame -1 count as absent. Outside of the keys the nearest
  /// one holds. A cyclic value folds the frame into the span from its first to its last key, by
  /// index, as often as it repeats; then, unless the first key is linear or a date, the first pass
  /// is square, the last one-minus-square and those between are linear.
  /// Required behaviour: beyond the first pass, frame f becomes first + (f % span) - 1.
  ///
  /// Nothing is thrown. On any fault, a line on the standard error stream names it, the result is
  /// all zero and `outDirection` is untouched.
  virtual uValue InterpolateValue(UxZel::IZelMgr* mgr, const UxZel::IZelInterpolatedValue* value,
                                  int frame, UxZel::CZelVector* outDirection, double* rate) = 0;

  /// Makes an instance of an animated object known: builds its mesh from points and polygons
  /// (triangles of their first three corners) and reads its animation file, once per object; later
  /// instances of the object share both.
  ///
  /// `animationFile` and `fallbackDirectory` are paths or "file://" URLs. Where there is no such
  /// file, one of that name is looked for beside the last component of `fallbackDirectory`, then
  /// inside it. A known instance, an object of a kind other than 0 and a missing file register
  /// nothing. Throws std::runtime_error for a polygon with fewer than three corners or with a
  /// corner past the last point, and what reading the file throws; nothing is registered then.
  virtual void RegisterAnimatedObject(UxZel::IZelObjectInstance* instance,
                                      UxZel::IZelAnimatedObject* object, const char* animationFile,
                                      const char* fallbackDirectory,
                                      UxZel::TZelObjectMgr<UxZel::CZelPoint>* points,
                                      UxZel::TZelObjectMgr<UxZel::IZelPolygon>* polygons) = 0;

  /// Drives an instance at a scene frame, by the kind of the value:
  ///
  ///   135  chooses the take frame shown and sets it on the instance's state when it differs
  ///   136  walks along the path that the value names: sets rotation, direction, position and
  ///        anchor of the instance; `outDirection`, when given, receives the direction
  ///
  /// The result holds the take frame in its first integer; all zero for any other kind. Without a
  /// definition, or one without animated object, it is the first key's value. Nothing is thrown: a
  /// fault gives a line on the standard error stream and an all-zero result.
  virtual uValue ManageAnimatedObjectInstance(UxZel::IZelMgr* mgr,
                                              UxZel::IZelObjectInstance* instance,
                                              const UxZel::IZelZelObjectDefinition* definition,
                                              const UxZel::IZelInterpolatedValue* value, int frame,
                                              UxZel::CZelVector* outDirection) const = 0;

  /// The mesh of a registered instance, deformed for a frame of a take; null for an unknown one. It
  /// lives until the same instance is asked for another take or frame.
  virtual UXS::Mesh* GetCurrentDefinition(unsigned int take, unsigned int frame,
                                          const UxZel::CZelUUID& instance) const = 0;

  /// The position of a vertex of the rest mesh at a frame of a take; (0, 0, 0) for an unknown
  /// instance. `vertex` must be the address of an element of that mesh's own array: a copy of its
  /// coordinates counts as a vertex without links.
  virtual Oru::TVector3D<float> TransformPoint(const Oru::TVector3D<float>* vertex,
                                               unsigned int take, unsigned int frame,
                                               const UxZel::CZelUUID& instance) const = 0;
  /// Required behaviour: by index, the answer is (0, 0, 0).
  virtual Oru::TVector3D<float> TransformPoint(unsigned int vertex, unsigned int take,
                                               unsigned int frame,
                                               const UxZel::CZelUUID& instance) const = 0;

  virtual ~XIAnimationMgr() = default;
};

}  // namespace Norvel::Vexa
