// The flow network among the rows of a problem. Rows whose flows (columns that are not binary) all
// have coefficients of one size are balances of nodes, scaled to 1; every flow is in two of them at
// most, with opposite signs. Connected balances are those of one commodity. Other rows with
// several flows are joint capacities: commodities that share these are matched, so that balances of
// one place become one node.
//
// Balances are chosen greedily, equations and long rows first. What is not found costs cuts, never
// their validity: cuts are made from sums of rows.
//
// Literature: Achterberg and Raack (2010).
#pragma once

#include "mip/domain.h"

namespace tarvik {

class FlowNetwork {
 public:
  // `global` says what is binary.
  FlowNetwork(const Problem &problem, const Domain &global);

  struct Balance {
    int row;
    double weight;  // times the row: +1 for flows that enter, -1 for those that leave
    int commodity;  // -1: the balance is connected with no other, and is none
    int node;
  };
  const Vec<Balance> &balances() const { return balances_; }
  int numCommodities() const { return static_cast<int>(members_.size()); }
  int numNodes() const { return nodes_; }
  // The balances of a flow that joins two of them; false: it does not.
  bool joins(int col, int &first, int &second) const;
  // The joint capacity of a flow; -1: none.
  int capacity(int col) const { return capacity_[col]; }

 private:
  struct Ends {
    int balance[2] = {-1, -1};
    bool positive[2] = {false, false};  // the coefficient in the row as it is
  };
  // A node at an end of a joint capacity's flows, and their sign there.
  struct Place {
    int node, sign;
  };

  bool isFlow(int col) const { return !global_->isBinary(col) && !global_->isFixed(col); }
  bool isFree(int row) const;
  int signAt(int col, int end) const;
  double flowCoef(int row, int &flows) const;
  void chooseBalances();
  bool findFlips(int row, Vec<std::pair<int, int>> &flips) const;
  void addBalance(int row, double size);
  void numberCommodities();
  bool isOfNetwork(int col) const;
  void findCapacities();
  int findNodes(const Vec<int> &members, int flip, Vec<int> &nodes) const;
  void matchNodes();
  void notePlaces(int balance);
  template <class F>
  void forFlows(int row, F &&f) const;

  const Problem *problem_;
  const Domain *global_;  // while the network is built
  Vec<Balance> balances_;
  Vec<Vec<int>> members_;  // balances by commodity
  Vec<Ends> ends_;
  Vec<int> capacity_;
  Vec<Vec<Place>> places_;  // by joint capacity, by row
  int nodes_ = 0;
};

}  // namespace tarvik
