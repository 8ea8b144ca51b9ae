// Filled in by its owner; present so the project configures.
