import QtQml

/// The sizes of one volume, for sums; KB.
QtObject {
    required property real sizeRole
    required property real availableSizeRole
}
