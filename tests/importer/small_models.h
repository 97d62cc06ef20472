#pragma once

#include <cmath>
#include <cstdio>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>
#include <vector>

#include "importer/import_check.h"
#include "importer/model_import.h"

/// Models built in code, and what tests do with imported ones.
namespace vexa::tests {

using importer::Matrix;
using importer::SourceModel;

inline Matrix translation(double x, double y, double z) {
  Matrix m;
  m.trans(x, y, z);
  return m;
}

/// An arm that stands on the origin along +Y, two units long, with its elbow in the middle: a strip
/// of two triangles. In the clip "bend" (one second) the elbow turns by 90 degrees from +Y to -X.
inline SourceModel arm() {
  const double half = std::sqrt(0.5);
  SourceModel model;
  model.mNodes = {{"root", SourceModel::kNone, {}},
                  {"shoulder", 0, {}},
                  {"elbow", 1, translation(0, 1, 0)},
                  {"skin", 0, {}}};
  SourceModel::Mesh mesh;
  mesh.mName = "skin";
  mesh.mPoints = {{0, 0, 0}, {0, 1, 0}, {0, 2, 0}, {0, 2, 1}};
  mesh.mTriangles = {{0, 1, 3}, {1, 2, 3}};
  mesh.mBones = {{"shoulder", 1, {}, {{0, 1.0}, {1, 0.5}}},
                 {"elbow", 2, translation(0, -1, 0), {{1, 0.5}, {2, 1.0}, {3, 1.0}}}};
  model.mMeshes = {mesh};
  model.mInstances = {{3, 0}};
  SourceModel::Channel channel;
  channel.mNode = 2;
  channel.mRotations.mKeys = {{0, {0, 0, 0, 1}}, {1, {0, 0, half, half}}};
  model.mClips = {{"bend", {channel}}};
  return model;
}

/// Writes the animation file, reads it back through the library and compares.
inline importer::ImportCheck checkThroughFile(const importer::ImportedModel& model) {
  // Cases run side by side, each in a process of its own.
  const std::string file =
      testing::TempDir() + "vexa_import_check_" + std::to_string(getpid()) + ".amo";
  formats::writeAnimationFile(model.mAnimation, file);
  const importer::ImportCheck check = importer::verifyImport(model, file, model.mMesh.points);
  std::remove(file.c_str());
  return check;
}

}  // namespace vexa::tests
