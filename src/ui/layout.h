// SPDX-License-Identifier: GPL-3.0-or-later
// A window's layout as data: rows, columns, grids and groups of controls. The renderer turns it into the
// toolkit's own layout, so nothing here counts pixels.
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

namespace quillbox {

class Control;

struct LayoutNode {
  enum class Kind {
    Item,    ///< one control
    Row,     ///< children side by side
    Column,  ///< children one below the other
    Grid,    ///< children row by row in `columns` columns of common widths
    Group,   ///< one child inside a Frame
    Tabs,    ///< the pages of a TabControl, one child each
    Space,   ///< an empty place that gets a share of the length left over
  };

  Kind kind = Kind::Space;
  Control* control = nullptr;  ///< of an Item, a Group or Tabs
  std::vector<LayoutNode> children;
  std::size_t columns = 0;
  std::vector<std::size_t> growingColumns;  ///< of a Grid: those that share the width left over
  int grow = 0;                             ///< share of the length left over along the parent's direction
  bool fill = true;                         ///< as wide as the parent (in a Row: as high)
};

inline LayoutNode Item(Control& control, int grow = 0) {
  LayoutNode node;
  node.kind = LayoutNode::Kind::Item;
  node.control = &control;
  node.grow = grow;
  return node;
}

inline LayoutNode Box(LayoutNode::Kind kind, std::vector<LayoutNode> children, int grow) {
  LayoutNode node;
  node.kind = kind;
  node.children = std::move(children);
  node.grow = grow;
  return node;
}
inline LayoutNode Row(std::vector<LayoutNode> children, int grow = 0) {
  return Box(LayoutNode::Kind::Row, std::move(children), grow);
}
inline LayoutNode Column(std::vector<LayoutNode> children, int grow = 0) {
  return Box(LayoutNode::Kind::Column, std::move(children), grow);
}
inline LayoutNode Grid(std::size_t columns, std::vector<std::size_t> growing, std::vector<LayoutNode> children,
                       int grow = 0) {
  LayoutNode node = Box(LayoutNode::Kind::Grid, std::move(children), grow);
  node.columns = columns;
  node.growingColumns = std::move(growing);
  return node;
}
inline LayoutNode Group(Control& frame, LayoutNode inside, int grow = 0) {
  LayoutNode node = Box(LayoutNode::Kind::Group, {std::move(inside)}, grow);
  node.control = &frame;
  return node;
}
inline LayoutNode Tabs(Control& tabControl, std::vector<LayoutNode> pages, int grow = 0) {
  LayoutNode node = Box(LayoutNode::Kind::Tabs, std::move(pages), grow);
  node.control = &tabControl;
  return node;
}
inline LayoutNode Space(int grow = 1) {
  return Box(LayoutNode::Kind::Space, {}, grow);
}

}  // namespace quillbox
