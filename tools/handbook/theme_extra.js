// The theme asks for this file. Nothing of the handbook needs what it would add.
