#pragma once

/// What the matrices are measured against: plain loops over Eigen's and GLM's types.
///
/// Matrices are 16 values, column by column, points 3 values; all arrays are aligned to 32 bytes.
namespace vexa::benchmarks {

void eigenInvert(const float* in, float* out, int count);
void eigenInvert(const double* in, double* out, int count);

void glmMultiply(const float* a, const float* b, float* out, int count);
void glmMultiply(const double* a, const double* b, double* out, int count);

// One matrix, many points.
void eigenTransform(const float* matrix, const float* points, float* out, int count);
void eigenTransform(const double* matrix, const double* points, double* out, int count);
void glmTransform(const float* matrix, const float* points, float* out, int count);
void glmTransform(const double* matrix, const double* points, double* out, int count);

}  // namespace vexa::benchmarks
