namespace mirabend { int shellPlaceholder() { return 0; } }
