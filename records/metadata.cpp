// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "records/metadata.h"

#include <initializer_list>
#include <string_view>

#include "base/conversions.h"
#include "base/files.h"

namespace kestrel {

namespace {

using base::TextWriter;

void write_lines(TextWriter& file, std::initializer_list<std::string_view> lines) {
    for (const std::string_view line : lines) {
        file.write_line(line);
    }
}

std::string abstract(const Contact& contact) {
    static constexpr std::string_view kAbstract =
        "The Marlin Institute developed Kestrel in partnership with a programme that educates municipal officials about land use. The two partners set out to help natural resource managers and town planners judge what impervious surfaces mean for the quality of local waters. Roofs, roads and pavement keep rain from soaking into the ground. The more of a watershed they cover, the more runoff and pollution reach its streams. Kestrel is an extension for ArcView® version 8.x. It works from remotely sensed land cover data, in which every cell carries the class of its land cover. To each class it applies an impervious surface coefficient, the share of such land that is usually impervious. From these it determines the total area and the percentage of impervious surface within polygons that the user specifies. It can also demonstrate how changes of the land cover would alter the imperviousness of a watershed. This data set illustrates the potential impact to water quality based on the percentage of impervious surface area. That percentage was computed with the processing and the parameters described in the process_step section of this metadata. A more detailed description of Kestrel is given on the web page of the Marlin Institute: ";
    return std::string(kAbstract) + contact.web_page;
}

void write_description(TextWriter& file, const RunRecord& record, const Contact& contact) {
    const std::string date = record.time.date_form();
    write_lines(file, {"Identification_Information:", "  Citation:", "    Citation_Information:",
                       "    Originator: Marlin Institute"});
    file.write_line("    Publication_Date: " + date);
    file.write_line("    Title: Percent Impervious Surface Area Coverage");
    file.write_line("  Description:");
    file.write_line("    Abstract: " + abstract(contact));
    // One blank less than its neighbours: intended.
    file.write_line(
        "   Purpose: This shapefile generated from Kestrel indicates the percent area impervious surface coverage within user defined polygons.");
    write_lines(file, {"  Time_Period_of_Content:", "    Time_Period_Information:", "      Single_Date/Time:"});
    file.write_line("        Calendar_Date: " + date);
    file.write_line("        Time_of_Day: " + record.time.time_form());
    file.write_line("    Currentness_Reference: " + date);
    write_lines(file, {"  Status:", "    Progress: Complete", "    Maintenance_and_Update_Frequency: None planned"});
}

void write_spatial_domain(TextWriter& file, const polygons::Envelope& extent) {
    const auto bound = [&extent](double value) { return extent.empty() ? kEnterValue : base::text_of(value); };
    write_lines(file, {"  Spatial_Domain:", "    Bounding_Coordinates:"});
    file.write_line("      West_Bounding_Coordinate: " + bound(extent.min_x));
    file.write_line("      East_Bounding_Coordinate: " + bound(extent.max_x));
    file.write_line("      North_Bounding_Coordinate: " + bound(extent.max_y));
    file.write_line("      South_Bounding_Coordinate: " + bound(extent.min_y));
}

void write_keywords_and_constraints(TextWriter& file, const RunRecord& record) {
    write_lines(
        file, {"  Keywords:", "    Theme:", "      Theme_Keyword_Thesaurus: None", "      Theme_Keyword: water quality",
               "      Theme_Keyword: watershed", "      Theme_Keyword: impervious surface",
               "      Theme_Keyword: landcover", "      Theme_Keyword: GIS spatial analysis",
               "    Place:", "      Place_Keyword_Thesaurus: None", "      Place_Keyword: United States"});
    const std::string basis = "Based on the vector data set (" + record.analysis_layer +
                              ") which Kestrel used to define the polygons within this data set.";
    file.write_line("  Access_Constraints: " + basis);
    file.write_line("  Use_Constraints: " + basis);
    file.write_line("");
}

void write_data_quality(TextWriter& file, const RunRecord& record) {
    write_lines(file, {"Data_Quality_Information:", "  Logical_Consistency_Report: none", "  Completeness_Report: none",
                       "  Positional_Accuracy:", "    Horizontal_Positional_Accuracy:"});
    file.write_line("      Horizontal_Positional_Accuracy_Report: Based on the vector data set (" +
                    record.analysis_layer + ") which Kestrel used to define the polygons within this data set.");
    write_lines(file, {"  Lineage:", "    Process_Step:", "      Process_Description:"});
}

void write_process(TextWriter& file, const RunRecord& record) {
    file.write_line("        This data set was created using the ArcMap 8.x extension Kestrel.");
    file.write_line("        The tool overlaid the polygon layer " + record.analysis_layer + " on the " +
                    record.land_cover_layer + " land cover grid to calculate ");
    file.write_line(
        "        the total area of each land cover category within each polygon. The impervious surface area for each land cover category within each polygon was calculated ");
    file.write_line(
        "        by multiplying the total area for each land cover category within the polygon by the impervious surface coefficients defined for the land cover category.");
    file.write_line("        Then analysis field (" + record.analysis_field + ") within the analysis theme (" +
                    record.analysis_layer +
                    ") defined the grouping of the polygons for aggregating impervious surfave values.");  // sic
    file.write_line("");
}

void write_coefficient_table(TextWriter& file, const RunRecord& record) {
    file.write_line(
        "         The following table lists the impervious coefficients applied to calculate the impervious surface  area within each polygon.");  // sic
    file.write_line("");
    file.write_line("           Values,ClassName,High,Medium.Low");  // sic
    for (const ClassRecord& land_class : record.classes) {
        file.write_line("             " + coefficient_line(land_class));
    }
    file.write_line("    ");
}

void write_single_coefficient(TextWriter& file, std::string_view density) {
    file.write_line("         This analysis applied the " + std::string(density) +
                    " population coefficient to all calculations of impervious surface area.");
}

void write_coefficient_statement(TextWriter& file, const RunRecord& record) {
    if (record.coefficient_option == CoefficientOption::high) {
        write_single_coefficient(file, "high");
    } else if (record.coefficient_option == CoefficientOption::medium) {
        write_single_coefficient(file, "medium");
    } else if (record.coefficient_option == CoefficientOption::low) {
        write_single_coefficient(file, "low");
    } else {
        file.write_line(
            "         The population coefficient applied for each impervious surface area calculation was identified using the value of the " +
            record.density_field + " field within the " + record.density_layer +
            " theme. The cutoffs for each population density calculation were defined as:");
        file.write_line("         High >= " + record.density_high);
        file.write_line("         Medium between " + record.density_high + " and " + record.density_low);
        file.write_line("         Low <= " + record.density_low);
    }
    file.write_line("");
}

void write_scenarios(TextWriter& file, const RunRecord& record) {
    if (record.scenarios.empty()) {
        return;
    }
    file.write_line(
        "    The following change scenarios were applied in the calculation of the impervious surface area.");
    for (const ScenarioRecord& scenario : record.scenarios) {
        file.write_line("      -changed land cover class within " + scenario.layer + " theme to " +
                        scenario.class_name + ".");
    }
    file.write_line(
        "         These scenarios impacted the impervious surface area calculations by performing a virtual reclassification of the land cover grid as defined by each change scenario.");
    file.write_line("  ");
}

void write_process_contact(TextWriter& file, const RunRecord& record, const Contact& contact) {
    file.write_line(
        "         More details on the processing done by Kestrel are given on the web page of the Marlin Institute: " +
        contact.web_page);
    file.write_line("");
    file.write_line("      Process_Date: " + record.time.date_form());
    write_lines(file, {"      Process_Contact:", "        Contact_Information:",
                       "          Contact_Organiaztion_Primary:",            // sic
                       "            Contact_Organiztion: Marlin Institute",  // sic
                       "          Contact_Address:", "            Address_Type: mailing and physical address"});
    file.write_line("            Address: " + contact.street_address);
    file.write_line("            City: " + contact.city);
    file.write_line("            State_or_Province: " + contact.state);
    file.write_line("            Postal_Code: " + contact.postal_code);
    file.write_line("            Country: " + contact.country);
    file.write_line("          Contact_Voice_Telephone: " + contact.telephone);
    file.write_line("");
}

void write_spatial_reference(TextWriter& file, bool decimal_degrees) {
    write_lines(file, {"Spatial_Data_Organization_Information:", "  Direct_Spatial_Reference_Method: Vector", "",
                       "Spatial_Reference_Information:", "  Horizontal_Coordinate_System_Definition:"});
    if (decimal_degrees) {
        // No empty line after these: intended.
        write_lines(file,
                    {"    Geographic:", "      Latitude_Resolution: <enter value>",
                     "      Longitude_Resolution: <enter value>", "      Geographic_Coordinate_Units: <enter value>"});
        return;
    }
    write_lines(file,
                {"    Planar:", "      <enter map projection or grid coordinate system information>",
                 "      Planar_Coordinate_Information:", "        Planar_Coordinate_Encoding_Method: <enter value>",
                 "        Coordinate_Represenstation:",  // sic
                 "          Abscissa_Resolution: <enter value>", "          Ordinate_Resolution: <enter value>",
                 "        Planar_Distance_Units: <enter value>", ""});
}

void write_entity_type(TextWriter& file) {
    write_lines(
        file,
        {"Entity_and_Attribute_Information:", "  Detailed_Description:", "    Entity_Type:",
         "      Entity_Type_Label: Percent impervious surface area coverage",
         "      Entity_Type_Definition: Percent impervious surface area caverage as calculated by Kestrel based on the process described within the processing step section.",  // sic
         "      Entity_Type_Definition_Source: Marlin Institute"});
}

/// The definition of an attribute up to its domain.
void write_definition(TextWriter& file, std::string_view definition) {
    file.write_line(definition);
    write_lines(file, {"      Atrribute_Definition_Source: Kestrel",  // sic
                       "      Attribute_Domain_Values:"});
}

void write_analysis_values(TextWriter& file, const std::vector<std::string>& values) {
    for (const std::string& value : values) {
        file.write_line("        Enumerated_Domain:");
        file.write_line("          Enumerated_Domain_Value: " + value);
        file.write_line("          Enumerated_Domain_Definition: number");
        file.write_line("          Enumerated_Domain_Definition_Source: Unknown");
    }
}

void write_range(TextWriter& file, std::string_view maximum) {
    file.write_line("        Range_Domain:             ");
    file.write_line("          Range_Domain_Minimum: 0");
    file.write_line("          Range_Domain_Maxium: " + std::string(maximum));  // sic
}

void write_completeness_values(TextWriter& file) {
    write_lines(file, {"        Enumerated_Domain:", "          Enumerated_Domain_Value: Y",
                       "          Enumerated_Domain_Definition: Y=yes the area calculations are complete",
                       "          Enumerated_Domain_Definition_Source: Kestrel",
                       "        Enumerated_Domain:", "          Enumerated_Domain_Value: N",
                       "          Enumerated_Domain_Definition: N=no the area calculations are NOT complete",
                       "          Enumerated_Domain_Definition_Source: Kestrel"});
}

/// What the attribute at `position` of the output means; nothing is said of those after the sixth.
void write_attribute_meaning(TextWriter& file, std::size_t position, const OutputRecord& output) {
    static constexpr std::string_view kLargestArea = "9,999,999,999";
    switch (position) {
        case 2:
            write_definition(file, "      Attribute_Definition: Analysis field");
            write_analysis_values(file, output.analysis_values);
            break;
        case 3:
            write_definition(file,
                             "      Attribute_Definition: Total Area within polygon defined by the analysis field");
            write_range(file, kLargestArea);
            break;
        case 4:
            write_definition(
                file,
                "      Attribute_Definition: Total impervious surface area as calculated by the Kestrel within polygon defined by the analysis field");
            write_range(file, kLargestArea);
            break;
        case 5:
            write_definition(
                file,
                "      Attribute_Definition: Percentage impervious surface area as calculated by the Kestrel within polygon defined by the analysis field");
            write_range(file, "100");
            break;
        case 6:
            write_definition(
                file,
                "      Attribute_Definition: Indicates if the area calculations are under estimated because the land cover grid contained 'no data' values within the polygon defined by the analysis field");
            write_completeness_values(file);
            break;
        default:
            break;
    }
}

void write_attributes(TextWriter& file, const OutputRecord& output) {
    // Positions 0 and 1 are object id and shape. What is said goes by the position, whatever the field's name.
    for (std::size_t position = 2; position < output.field_names.size(); ++position) {
        file.write_line("    Attribute:");
        file.write_line("      Attribute_Label: " + output.field_names[position]);
        file.write_line("");
        write_attribute_meaning(file, position, output);
    }
    file.write_line(" ");
}

void write_metadata_reference(TextWriter& file, const RunRecord& record, const Contact& contact) {
    file.write_line("Metadata_Reference_Information:");
    file.write_line("  Metadata_Date: " + record.time.long_form());
    write_lines(file,
                {"  Metadata_Contact:", "    Contact_Information:", "      Contact_Organization: Marlin Institute",
                 "    Contact_Address:", "      Address_Type: mailing and physical address"});
    file.write_line("      Address: " + contact.street_address);
    file.write_line("      City: " + contact.city);
    file.write_line("      State_or_Province: " + contact.state);
    file.write_line("      Postal_Code: " + contact.postal_code);
    file.write_line("      Country: " + contact.country);
    file.write_line("    Contace_Voice_Telephone: " + contact.telephone);  // sic
    file.write_line("    Contact_Facsimile_Telephone: " + contact.fax);
    file.write_line("    Contact_Electronic_Mail_Address: " + contact.e_mail);
    file.write_line("    Hours_of_Service: " + contact.hours);
}

void write_metadata_standard(TextWriter& file) {
    write_lines(
        file, {"Metadata_Standard_Name: FGDC Content Standards for Digital Geospatial Metadata",
               "Metadata_Standard_Version: FGDC-STD-001-1998", "Metadata_Access_Constraints: None",
               "Metadata_Use_Constraints: None",
               "Metadata_Security_Information:", "  Metadata_Security_Classification_System: None",
               "  Metadata_Security_Classification: Unclassified", "  Metadata_Security_Handling_Description: None."});
}

}  // namespace

void write_metadata(const std::string& path, const RunRecord& record, const OutputRecord& output,
                    const Contact& contact) {
    TextWriter file(path);
    write_description(file, record, contact);
    write_spatial_domain(file, output.extent);
    write_keywords_and_constraints(file, record);
    write_data_quality(file, record);
    write_process(file, record);
    write_coefficient_table(file, record);
    write_coefficient_statement(file, record);
    write_scenarios(file, record);
    write_process_contact(file, record, contact);
    write_spatial_reference(file, output.decimal_degrees);
    write_entity_type(file);
    write_attributes(file, output);
    write_metadata_reference(file, record, contact);
    write_metadata_standard(file);
    file.close();
}

}  // namespace kestrel
