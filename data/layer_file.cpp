// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "data/layer_file.h"

#include <fmt/format.h>

#include <pugixml.hpp>
#include <sstream>

#include "base/conversions.h"
#include "base/files.h"

namespace kestrel::data {

namespace {

/// The QGIS whose form of these files is written; later ones read it too.
constexpr const char* kQgisVersion = "3.22.16";
/// QGIS gives a layer an id of its own when it loads the file; this one only joins tree and layer.
constexpr const char* kLayerId = "kestrel_output_1";

void append_text(pugi::xml_node parent, const char* name, const std::string& text) {
    parent.append_child(name).text().set(text.c_str());
}

void append_range(pugi::xml_node ranges, std::size_t position, double lower, const ClassBreaksRenderer::Class& entry) {
    pugi::xml_node range = ranges.append_child("range");
    range.append_attribute("symbol").set_value(std::to_string(position).c_str());
    range.append_attribute("lower").set_value(base::text_of(lower).c_str());
    range.append_attribute("upper").set_value(base::text_of(entry.upper_break).c_str());
    range.append_attribute("label").set_value(entry.label.c_str());
    range.append_attribute("render").set_value("true");
}

/// A plain fill; QGIS supplies its default outline.
void append_symbol(pugi::xml_node symbols, std::size_t position, const Colour& fill) {
    pugi::xml_node symbol = symbols.append_child("symbol");
    symbol.append_attribute("name").set_value(std::to_string(position).c_str());
    symbol.append_attribute("type").set_value("fill");
    pugi::xml_node layer = symbol.append_child("layer");
    layer.append_attribute("class").set_value("SimpleFill");
    pugi::xml_node property = layer.append_child("prop");
    property.append_attribute("k").set_value("color");
    property.append_attribute("v").set_value(fmt::format("{},{},{},255", fill.red, fill.green, fill.blue).c_str());
}

/// QGIS takes the first range that holds a value, both ends included, so ranges may share their ends.
void append_renderer(pugi::xml_node parent, const ClassBreaksRenderer& renderer) {
    pugi::xml_node node = parent.append_child("renderer-v2");
    node.append_attribute("type").set_value("graduatedSymbol");
    node.append_attribute("attr").set_value(renderer.field.c_str());
    pugi::xml_node ranges = node.append_child("ranges");
    pugi::xml_node symbols = node.append_child("symbols");
    double lower = 0;
    for (std::size_t i = 0; i < renderer.classes.size(); ++i) {
        append_range(ranges, i, lower, renderer.classes[i]);
        append_symbol(symbols, i, renderer.classes[i].fill);
        lower = renderer.classes[i].upper_break;
    }
}

void append_tree(pugi::xml_node parent, const std::string& layer_name) {
    pugi::xml_node group = parent.append_child("layer-tree-group");
    group.append_attribute("name").set_value("");
    group.append_attribute("checked").set_value("Qt::Checked");
    group.append_attribute("expanded").set_value("1");
    pugi::xml_node layer = group.append_child("layer-tree-layer");
    layer.append_attribute("id").set_value(kLayerId);
    layer.append_attribute("name").set_value(layer_name.c_str());
    layer.append_attribute("checked").set_value("Qt::Checked");
    layer.append_attribute("expanded").set_value("1");
}

void append_layer(pugi::xml_node parent, const LayerDefinition& definition) {
    pugi::xml_node layer = parent.append_child("maplayers").append_child("maplayer");
    layer.append_attribute("type").set_value("vector");
    layer.append_attribute("geometry").set_value("Polygon");
    append_text(layer, "id", kLayerId);
    append_text(layer, "datasource", "./" + definition.shapefile_name);
    append_text(layer, "layername", definition.layer_name);
    if (definition.reference.known()) {
        // QGIS does not look into the .prj of a layer that comes from a layer definition.
        append_text(layer.append_child("srs").append_child("spatialrefsys"), "wkt", definition.reference.esri_wkt());
    }
    pugi::xml_node provider = layer.append_child("provider");
    provider.append_attribute("encoding").set_value("UTF-8");
    provider.text().set("ogr");
    append_renderer(layer, definition.renderer);
}

void write_document(const std::string& path, const pugi::xml_document& document) {
    std::ostringstream text;
    document.save(text, " ", pugi::format_indent, pugi::encoding_utf8);
    base::write_file(path, text.view());
}

}  // namespace

void write_layer_file(const std::string& path, const LayerDefinition& definition) {
    pugi::xml_document document;
    document.append_child(pugi::node_doctype).set_value("qgis-layer-definition");
    pugi::xml_node root = document.append_child("qlr");
    append_tree(root, definition.layer_name);
    append_layer(root, definition);
    write_document(path, document);
}

void write_style_file(const std::string& path, const ClassBreaksRenderer& renderer) {
    pugi::xml_document document;
    document.append_child(pugi::node_doctype).set_value("qgis PUBLIC 'http://mrcc.com/qgis.dtd' 'SYSTEM'");
    pugi::xml_node root = document.append_child("qgis");
    root.append_attribute("version").set_value(kQgisVersion);
    root.append_attribute("styleCategories").set_value("Symbology");
    append_renderer(root, renderer);
    write_document(path, document);
}

}  // namespace kestrel::data
