#pragma once

#include <map>
#include <memory>
#include <optional>

#include "vexa/Export.h"
#include "vexa/animation/XIAnimationMgr.h"
#include "vexa/math/ux_matrix44.h"

namespace Norvel::Vexa {

class PathCache;
class XCFrameCollector;

/// The animation manager that XIAnimationMgr::Create() makes, with the steps that it is made of.
///
/// The steps throw std::runtime_error; only the entry points of XIAnimationMgr catch.
class VEXA_EXPORT XCAnimationMgr : public XIAnimationMgr {
 public:
  /// What is known of one animated object; shared by its instances.
  ///
  /// Required behaviour: records, their meshes and their frame data outlive the manager.
  struct sAnimatedInstanceData {
    UxZel::IZelAnimatedObject* mObject;  ///< the host's
    XCFrameCollector* mFrameCollector;   ///< its animation, built on mMesh
    UXS::Mesh* mMesh;                    ///< its mesh at rest
  };

  XCAnimationMgr();
  XCAnimationMgr(const XCAnimationMgr&) = delete;
  XCAnimationMgr& operator=(const XCAnimationMgr&) = delete;

  void Delete() override;
  uValue InterpolateValue(UxZel::IZelMgr* mgr, const UxZel::IZelInterpolatedValue* value, int frame,
                          UxZel::CZelVector* outDirection, double* rate) override;
  void RegisterAnimatedObject(UxZel::IZelObjectInstance* instance,
                              UxZel::IZelAnimatedObject* object, const char* animationFile,
                              const char* fallbackDirectory,
                              UxZel::TZelObjectMgr<UxZel::CZelPoint>* points,
                              UxZel::TZelObjectMgr<UxZel::IZelPolygon>* polygons) override;
  uValue ManageAnimatedObjectInstance(UxZel::IZelMgr* mgr, UxZel::IZelObjectInstance* instance,
                                      const UxZel::IZelZelObjectDefinition* definition,
                                      const UxZel::IZelInterpolatedValue* value, int frame,
                                      UxZel::CZelVector* outDirection) const override;
  UXS::Mesh* GetCurrentDefinition(unsigned int take, unsigned int frame,
                                  const UxZel::CZelUUID& instance) const override;
  Oru::TVector3D<float> TransformPoint(const Oru::TVector3D<float>* vertex, unsigned int take,
                                       unsigned int frame,
                                       const UxZel::CZelUUID& instance) const override;
  Oru::TVector3D<float> TransformPoint(unsigned int vertex, unsigned int take, unsigned int frame,
                                       const UxZel::CZelUUID& instance) const override;
  ~XCAnimationMgr() override;

  /// See XIAnimationMgr::ForgetAnimatedObject.
  bool Forget(const UxZel::IZelAnimatedObject* object);

  /// Finds, among keys in any order, the one at or next before a frame and the one next after it.
  ///
  /// Keys at frame -1 are skipped. Of keys at one frame the first counts; at the frame asked for,
  /// the second is the next after. Where there is none on one side, both indices name the key on
  /// the other; where there is none at all, both stay as the caller set them (-1).
  void GetKeyFrameRange(int frame, int& minIndex, int& maxIndex,
                        const UxZel::TZelObjectMgr<UxZel::IZelKeyFrame>* keys) const;

  /// The frame of the object's take to show at a scene frame, in the result's first integer.
  ///
  /// The time since the first key, in host frames, is stretched by `speed` host frames per span
  /// from the first key to the second (0: not at all; negative: the length of the take), and turned
  /// into take frames, plus the state's own offset when `addOffset` is set. Past the end of the
  /// take it starts anew, with frame 1 if `wrapFreely` is set, and `outCycles` counts the takes
  /// played; otherwise a value that is not cyclic, or has played its repeats, gives the second
  /// key's value. Before the first key, and for a definition without animated object (or a null
  /// one), the result is the first key's value.
  uValue GetAnimatedObjectFrame(UxZel::IZelMgr* mgr, UxZel::IZelObjectInstance* instance,
                                const UxZel::IZelZelObjectDefinition* definition,
                                const UxZel::IZelInterpolatedValue* value, int frame,
                                int& outCycles, int speed, bool wrapFreely, bool addOffset) const;

  /// The position of the anchor vertex of an instance's object at a frame of the state's take, in
  /// the object's own space: x and y of the deformed vertex, the take's elevation as z. Zero for an
  /// object that is not registered.
  UxZel::CZelPoint GetAEAnchorPos(UxZel::IZelMgr* mgr, UxZel::IZelObjectInstance* instance,
                                  const UxZel::IZelZelObjectDefinition* definition,
                                  int takeFrame) const;

  /// An instance of the scene by its identifier, or null.
  ///
  /// Required behaviour: only the first instance of the scene is ever found.
  UxZel::IZelObjectInstance* GetZelObjectInstance(UxZel::IZelMgr* mgr,
                                                  const UxZel::CZelUUID& id) const;

  /// From an instance's own coordinates into the world, through its enclosing instances as far as
  /// GetZelObjectInstance finds them, the instance itself included. A chain of parents that comes
  /// back to an identifier ends there.
  ux_matrix44<double> GetLocal2WorldMatrix(UxZel::IZelMgr* mgr,
                                           const UxZel::IZelObjectInstance* instance) const;

  /// Sets an instance's anchor to a point of the world, taken into its parent's space where it has
  /// a parent. Throws std::overflow_error when the parent's matrix has no inverse.
  void SetAnchorPos(UxZel::IZelMgr* mgr, UxZel::IZelObjectInstance* instance,
                    const UxZel::CZelPoint& worldPoint) const;

 private:
  // The space inside an instance: its matrix into the world, and the factor by which it and the
  // instances around it scale what it encloses.
  struct Space {
    ux_matrix44<double> mToWorld;
    float mScale = 1;
  };

  const sAnimatedInstanceData* findRecord(const UxZel::IZelAnimatedObject* object) const;
  const sAnimatedInstanceData* findRecord(const UxZel::CZelUUID& instance) const;
  Space spaceOf(UxZel::IZelMgr* mgr, const UxZel::IZelObjectInstance* instance) const;
  // None for an instance without a parent, or whose parent is not found.
  std::optional<Space> parentSpaceOf(UxZel::IZelMgr* mgr,
                                     const UxZel::IZelObjectInstance* instance) const;
  static UxZel::CZelPoint inParent(const std::optional<Space>& parent,
                                   const UxZel::CZelPoint& worldPoint);
  uValue showTakeFrame(UxZel::IZelMgr* mgr, UxZel::IZelObjectInstance* instance,
                       const UxZel::IZelZelObjectDefinition* definition,
                       const UxZel::IZelInterpolatedValue* value, int frame) const;
  uValue walkAlongPath(UxZel::IZelMgr* mgr, UxZel::IZelObjectInstance* instance,
                       const UxZel::IZelZelObjectDefinition* definition,
                       const UxZel::IZelInterpolatedValue* value, int frame,
                       UxZel::CZelVector* outDirection) const;

  // A record is in the first map once and in the second once per instance of its object. Both maps
  // borrow: a record outlives the manager.
  std::map<const UxZel::IZelAnimatedObject*, sAnimatedInstanceData*> mInstancesByAnimatedObject;
  std::map<UxZel::CZelUUID, sAnimatedInstanceData*> mInstancesByUUID;
  const std::unique_ptr<PathCache> mPaths;
};

}  // namespace Norvel::Vexa
