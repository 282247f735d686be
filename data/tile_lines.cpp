// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "data/tile_lines.h"

#include <algorithm>
#include <cmath>
#include <pugixml.hpp>
#include <string_view>

namespace kestrel::data {

namespace {

/// Bands of thin strips are this many rows high.
constexpr int kThinStripRows = 256;
constexpr int kThickBlockRows = 64;
/// About as many cells as fit into a processor's own cache are read at once.
constexpr int kCellsAtOnce = 1 << 18;
/// A mosaic is cut by its sources' blocks while its bands have this many rows on average.
constexpr int kLowestBands = 32;

int rounded_up(int value, int step) {
    return (value + step - 1) / step * step;
}

std::vector<int> equal_lines(int end, int step) {
    std::vector<int> lines;
    for (int line = 0; line < end; line += step) {
        lines.push_back(line);
    }
    lines.push_back(end);
    return lines;
}

/// Height of a band of blocks, and width of a tile of them.
int band_height(int block_rows) {
    return block_rows >= kThickBlockRows ? block_rows : rounded_up(kThinStripRows, block_rows);
}
int tile_width(int block_columns, int block_rows, int columns) {
    return block_rows >= kThickBlockRows ? std::min(block_columns, columns) : columns;
}

/// One direction of a source: where it begins in its own file, where in the mosaic, and how far it reaches.
struct Stretch {
    int from = 0;
    int to = 0;
    int size = 0;
};

/// Adds the lines between steps of a source's own file, and its ends, where they lie in the mosaic.
void add_lines(std::vector<int>& lines, const Stretch& stretch, int step) {
    lines.push_back(stretch.to);
    for (int line = rounded_up(stretch.from + 1, step); line < stretch.from + stretch.size; line += step) {
        lines.push_back(line - stretch.from + stretch.to);
    }
    lines.push_back(stretch.to + stretch.size);
}

void tidy(std::vector<int>& lines, int end) {
    lines.push_back(0);
    lines.push_back(end);
    std::erase_if(lines, [&](int line) { return line < 0 || line > end; });
    std::sort(lines.begin(), lines.end());
    lines.erase(std::unique(lines.begin(), lines.end()), lines.end());
}

/// Reads the lines off a mosaic's description.
class MosaicReader {
  public:
    MosaicReader(int columns, int rows, BlockSize otherwise)
        : m_columns(columns), m_rows(rows), m_otherwise(otherwise) {}

    TileLines read(const char* vrt_xml) {
        pugi::xml_document document;
        if (!document.load_string(vrt_xml)) {
            return {};
        }
        const pugi::xml_node band = document.child("VRTDataset").child("VRTRasterBand");
        for (const pugi::xml_node source : band.children()) {
            if (std::string_view(source.name()).ends_with("Source") && !add(source)) {
                return {};
            }
        }
        if (m_lines.rows.empty()) {
            return {};
        }
        tidy(m_lines.rows, m_rows);
        tidy(m_lines.columns, m_columns);
        // Lines of few columns or rows each would cost more than they save.
        const bool too_many = static_cast<int>(m_lines.rows.size()) > 2 + m_rows / kLowestBands ||
                              static_cast<int>(m_lines.columns.size()) > 2 + m_columns / kLowestBands;
        m_lines.rows_at_once = m_rows;
        return too_many ? TileLines() : m_lines;
    }

  private:
    bool add(const pugi::xml_node& source) {
        const pugi::xml_node blocks = source.child("SourceProperties");
        const int block_columns = blocks.attribute("BlockXSize").as_int(m_otherwise.columns);
        const int block_rows = blocks.attribute("BlockYSize").as_int(m_otherwise.rows);
        Stretch across;
        Stretch down;
        if (block_columns <= 0 || block_rows <= 0 || !stretch(source, "xOff", "xSize", across) ||
            !stretch(source, "yOff", "ySize", down)) {
            return false;
        }
        add_lines(m_lines.columns, across, tile_width(block_columns, block_rows, across.from + across.size));
        add_lines(m_lines.rows, down, band_height(block_rows));
        return true;
    }

    /// One direction of a source that is laid cell on cell.
    static bool stretch(const pugi::xml_node& source, const char* offset, const char* size, Stretch& result) {
        const pugi::xml_node from = source.child("SrcRect");
        const pugi::xml_node to = source.child("DstRect");
        double numbers[] = {from.attribute(offset).as_double(-1), to.attribute(offset).as_double(-1),
                            from.attribute(size).as_double(-1), to.attribute(size).as_double(-1)};
        for (const double number : numbers) {
            if (!(number >= 0) || number > 1e9 || number != std::floor(number)) {
                return false;
            }
        }
        result = {static_cast<int>(numbers[0]), static_cast<int>(numbers[1]), static_cast<int>(numbers[2])};
        return numbers[2] == numbers[3];
    }

    int m_columns;
    int m_rows;
    BlockSize m_otherwise;
    TileLines m_lines;
};

}  // namespace

TileLines block_lines(int block_columns, int block_rows, int columns, int rows) {
    const int height = std::min(band_height(block_rows), rows);
    const int width = tile_width(block_columns, block_rows, columns);
    const int at_once = std::max(1, kCellsAtOnce / width / block_rows) * block_rows;
    return {.rows = equal_lines(rows, height),
            .columns = equal_lines(columns, width),
            .rows_at_once = block_rows >= kThickBlockRows ? height : std::min(at_once, height)};
}

TileLines mosaic_lines(const char* vrt_xml, int columns, int rows, BlockSize otherwise) {
    return MosaicReader(columns, rows, otherwise).read(vrt_xml);
}

}  // namespace kestrel::data
