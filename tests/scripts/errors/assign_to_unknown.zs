# An unknown name with members is a variable, not a class whose static member is assigned.
n.值 = 3
