// directions.h -- the axis directions, orientations and sides of geometry.
//
// x grows to the right and y upward, so a rectangle's top has the larger y.
// Sides bear the numbers of the directions that leave through them.

#ifndef NQ_GEOMETRY_DIRECTIONS_H
#define NQ_GEOMETRY_DIRECTIONS_H

// Counter-clockwise from +x; even values are horizontal, odd ones vertical.
enum NQDirectionEnum : int {
  NQDirRight = 0,
  NQDirUp = 1,
  NQDirLeft = 2,
  NQDirDown = 3,
  NQDirNone = 4,  // no axis direction
};

// Operations test for zero only: every other value means horizontal.
enum NQOrientationEnum : int {
  NQVertical = 0,    // the y coordinate, or the height
  NQHorizontal = 1,  // the x coordinate, or the width
};

enum NQSideEnum : int {
  NQSideRight = 0,
  NQSideTop = 1,
  NQSideLeft = 2,
  NQSideBottom = 3,
};

#endif  // NQ_GEOMETRY_DIRECTIONS_H
