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
  model.nodes = {{"root", SourceModel::kNone, {}},
                 {"shoulder", 0, {}},
                 {"elbow", 1, translation(0, 1, 0)},
                 {"skin", 0, {}}};
  SourceModel::Mesh mesh;
  mesh.name = "skin";
  mesh.points = {{0, 0, 0}, {0, 1, 0}, {0, 2, 0}, {0, 2, 1}};
  mesh.triangles = {{0, 1, 3}, {1, 2, 3}};
  mesh.bones = {{"shoulder", 1, {}, {{0, 1.0}, {1, 0.5}}},
                {"elbow", 2, translation(0, -1, 0), {{1, 0.5}, {2, 1.0}, {3, 1.0}}}};
  model.meshes = {mesh};
  model.instances = {{3, 0}};
  SourceModel::Channel channel;
  channel.node = 2;
  channel.rotations = {{0, {0, 0, 0, 1}}, {1, {0, 0, half, half}}};
  model.clips = {{"bend", {channel}}};
  return model;
}

/// Writes the animation file, reads it back through the library and compares.
inline importer::ImportCheck checkThroughFile(const importer::ImportedModel& model) {
  // Cases run side by side, each in a process of its own.
  const std::string file =
      testing::TempDir() + "vexa_import_check_" + std::to_string(getpid()) + ".amo";
  formats::writeAnimationFile(model.animation, file);
  const importer::ImportCheck check = importer::verifyImport(model, file, model.mesh.points);
  std::remove(file.c_str());
  return check;
}

}  // namespace vexa::tests
