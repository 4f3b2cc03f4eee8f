#include "report/drivemap.h"

#include "databaseservice/drivedatatable.h"
#include "drive/fileclass.h"
#include "stores/database.h"

#include <algorithm>
#include <array>
#include <limits>
#include <queue>
#include <tuple>
#include <unordered_map>
#include <utility>

namespace dbservice {

namespace {

constexpr int none = -1;

/// A row, and the list of its folder's rows by their places.
struct Node {
    std::string name;
    std::int64_t bytes = 0;
    std::int64_t files = 0;
    int parent = none;
    int firstChild = none;
    int nextSibling = none;
    bool isFolder = false;
};

class Shares {
public:
    void add(const std::string& label, std::int64_t bytes)
    {
        Share& share = m_shares[label];
        share.label = label;
        ++share.files;
        share.bytes += bytes;
    }

    /// The largest, and one for all others.
    std::vector<Share> largest(std::size_t count) const
    {
        std::vector<Share> all;
        for (const auto& [label, share] : m_shares) {
            all.push_back(share);
        }
        std::ranges::sort(all, [](const Share& left, const Share& right) {
            return std::tie(right.bytes, right.files, left.label) < std::tie(left.bytes, left.files, right.label);
        });
        if (all.size() > count) {
            Share others{"all others"};
            for (std::size_t i = count; i < all.size(); ++i) {
                others.files += all[i].files;
                others.bytes += all[i].bytes;
            }
            all.resize(count);
            all.push_back(others);
        }
        return all;
    }

private:
    std::unordered_map<std::string, Share> m_shares;
};

std::string extensionOf(const std::string& name)
{
    constexpr std::size_t longest = 10;
    const std::size_t dot = name.rfind('.');
    if (dot == std::string::npos || dot == 0 || dot + 1 == name.size() || name.size() - dot > longest) {
        return "without";
    }
    std::string extension = name.substr(dot);
    std::ranges::transform(extension, extension.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return extension;
}

std::string classOf(std::int64_t number)
{
    for (const KnownClass& known : fileClasses) {
        if (static_cast<std::int64_t>(known.number) == number) {
            return known.name;
        }
    }
    return "class " + std::to_string(number);
}

struct Age {
    const char* label;
    std::int64_t days;
};

constexpr std::array ages{Age{"last 24 hours", 1},   Age{"last 7 days", 7},
                          Age{"last 30 days", 30},   Age{"last year", 365},
                          Age{"last 5 years", 1826}, Age{"older", std::numeric_limits<int>::max()}};

class Tree {
public:
    explicit Tree(DriveMap& map) : m_map(map) { }

    void read(Database& drive, std::int64_t now)
    {
        Shares classes;
        Shares extensions;
        for (const Age& age : ages) {
            m_map.ages.push_back({age.label});
        }
        std::unordered_map<std::string, int> places;
        std::vector<std::string> parents;
        m_nodes.push_back({}); // the top, above what has no row above it
        parents.emplace_back();
        drive.run("SELECT fileId, parentId, name, size, mimeType, classIndex, modifiedTime FROM DriveDataTable "
                  "WHERE recycled = 0 AND directlyRecycled = 0",
                  {}, [&](const Database::Row& row) {
                      Node node;
                      node.name = row.text(2);
                      node.isFolder = row.text(4) == DatabaseService::DriveDataTable::folderMimeType;
                      if (!node.isFolder) {
                          node.bytes = std::max<std::int64_t>(0, row.number(3));
                          classes.add(classOf(row.number(5)), node.bytes);
                          extensions.add(extensionOf(node.name), node.bytes);
                          addAge(now - row.number(6), node.bytes);
                          ++m_map.files;
                          m_map.bytes += node.bytes;
                      } else {
                          ++m_map.folders;
                      }
                      places.emplace(row.text(0), static_cast<int>(m_nodes.size()));
                      parents.emplace_back(row.text(1));
                      m_nodes.push_back(std::move(node));
                  });
        for (int place = 1; place < static_cast<int>(m_nodes.size()); ++place) {
            const auto parent = places.find(parents[at(place)]);
            hang(place, parent == places.end() || parent->second == place ? 0 : parent->second);
        }
        m_map.classes = classes.largest(all);
        constexpr std::size_t shownExtensions = 14;
        m_map.extensions = extensions.largest(shownExtensions);
    }

    /// Each folder's size, from below; counts what hangs on no folder of the tree.
    void addUp()
    {
        std::vector<int> order{0};
        for (std::size_t i = 0; i < order.size(); ++i) { // grows as it goes
            for (int child = node(order[i]).firstChild; child != none; child = node(child).nextSibling) {
                order.push_back(child);
            }
        }
        m_map.inCircles = static_cast<std::int64_t>(m_nodes.size() - order.size());
        for (std::size_t i = order.size() - 1; i > 0; --i) {
            const Node& below = node(order[i]);
            Node& above = node(below.parent);
            above.bytes += below.bytes;
            above.files += below.isFolder ? below.files : 1;
        }
    }

    /// From the largest folder to the smallest, until there is enough to look at.
    void cut()
    {
        if (m_nodes.size() == 1) {
            return;
        }
        constexpr std::size_t enough = 20'000;
        const Node* top = &m_nodes.front();
        const int only = top->firstChild;
        const bool hasOneRoot = node(only).nextSibling == none && node(only).isFolder;
        std::priority_queue<std::pair<std::int64_t, std::pair<int, int>>> folders; // size, place, place in the map
        const int root = hasOneRoot ? only : 0;
        m_map.entries.push_back({"", node(root).bytes, node(root).files, none, true});
        folders.push({node(root).bytes, {root, 0}});
        while (!folders.empty()) {
            const auto [place, shown] = folders.top().second;
            folders.pop();
            std::vector<int> children;
            for (int child = node(place).firstChild; child != none; child = node(child).nextSibling) {
                children.push_back(child);
            }
            std::ranges::sort(children, [this](int left, int right) {
                return std::pair(-node(left).bytes, left) < std::pair(-node(right).bytes, right);
            });
            constexpr std::size_t mostOfFolder = 120;
            if (m_map.entries.size() >= enough) {
                break; // the folders that are left are shown, and not what is in them
            }
            const std::size_t taken = std::min(children.size(), mostOfFolder);
            DriveMap::Entry rest{"", 0, 0, shown, false, true};
            for (std::size_t i = 0; i < children.size(); ++i) {
                const Node& child = node(children[i]);
                if (i >= taken) {
                    rest.bytes += child.bytes;
                    rest.files += child.isFolder ? child.files : 1;
                    continue;
                }
                if (child.isFolder && child.firstChild != none) {
                    folders.push({child.bytes, {children[i], static_cast<int>(m_map.entries.size())}});
                }
                m_map.entries.push_back({child.name, child.bytes, child.files, shown, child.isFolder});
            }
            if (taken < children.size()) {
                m_map.entries.push_back(rest);
            }
        }
    }

private:
    static constexpr std::size_t all = std::numeric_limits<std::size_t>::max();

    static std::size_t at(int place) { return static_cast<std::size_t>(place); }
    Node& node(int place) { return m_nodes[at(place)]; }

    void hang(int place, int parent)
    {
        node(place).parent = parent;
        node(place).nextSibling = node(parent).firstChild;
        node(parent).firstChild = place;
    }

    void addAge(std::int64_t seconds, std::int64_t bytes)
    {
        constexpr std::int64_t day = std::int64_t{24} * 60 * 60;
        std::size_t i = 0;
        while (i + 1 < ages.size() && seconds >= ages[i].days * day) {
            ++i;
        }
        ++m_map.ages[i].files;
        m_map.ages[i].bytes += bytes;
    }

    DriveMap& m_map;
    std::vector<Node> m_nodes;
};

} // namespace

DriveMap readDriveMap(Database& drive, std::int64_t now)
{
    DriveMap map;
    Tree tree(map);
    tree.read(drive, now);
    tree.addUp();
    tree.cut();
    return map;
}

} // namespace dbservice
