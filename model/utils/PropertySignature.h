#pragma once
// Keys of a property list that find, among many lists, those that may equal it by the
// order-free equality of property lists.

#include <string>

#include "model/PropertyList.h"

namespace model::utils {

struct PropertySignature {
    // The saved bytes of each property, sorted and joined: lists with equal strings hold the same
    // properties, so equality to a third list is the same for both.
    std::string exact;
    // No two properties share class and name. Then a list equal to this one has the same classes
    // and names, and the same values of the properties compared exactly (integers, text,
    // arguments).
    bool distinctNames = true;
    // Those classes, names and exact values, sorted by class and name; for distinct names only.
    std::string exactValues;
    // The first component of the first float-valued property in that order falls into a grid cell
    // of width 4e-5: lists within the 1e-5 tolerance fall into the same or a neighbouring cell.
    // Not finite: the list equals no list. Without such a property the cell is 0.
    bool finite = true;
    double cell = 0;

    // The lookup keys: exactValues and a cell.
    std::string lookupKey(double atCell) const;
};

PropertySignature makePropertySignature(const PropertyList& list);

}  // namespace model::utils
