// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <pthread.h>
#include <sys/types.h>

#include <array>
#include <cstdint>
#include <string>

namespace quarner {

/// The nodes of an emulated machine and which process has them open: one piece of memory that the
/// test program shares with every program that it starts, by a name in the environment. Survives
/// the death of any of them at any moment: what a dead process had open does not count. Any thread.
class NodeTable {
public:
    struct Node {
        bool isThere;
        int error;         ///< of the refused attempts to open it
        unsigned refusals; ///< the number of attempts to refuse

        std::array<char, 24> path; ///< empty: unused
    };

    /// Makes the table of this process and of those that it will start; does nothing if there is
    /// one already. Sets an environment variable.
    static void make();
    /// Returns the table; null if this process has none.
    static NodeTable* find();

    NodeTable();
    void lock();
    void unlock();

    // To be called while it is locked.

    /// Returns the node with a path; null if there is none.
    Node* nodeAt(const std::string& path);
    /// Makes a node, which is not there and not open, or resets it.
    Node& reset(const std::string& path);

    void addOpening(const Node& node, int descriptor, bool isExclusive);
    /// Forgets an opening of this process, if it has it.
    void removeOpening(int descriptor);
    /// The number of times that any process has it open.
    int openCount(const Node& node);
    bool isOpenExclusively(const Node& node);
    /// From now on no opening of the node is exclusive.
    void endExclusiveness(const Node& node);

private:
    struct Opening {
        pid_t process; ///< 0: unused
        std::uint64_t startTime;
        unsigned node;
        int descriptor;
        bool isExclusive;
    };

    unsigned indexOf(const Node& node) const;
    template <class Function>
    void forOpeningsOf(const Node& node, Function function);
    void removeDead();

    pthread_mutex_t _mutex = {};
    std::array<Node, 256> _nodes = {};
    std::array<Opening, 1024> _openings = {};
};

} // namespace quarner
