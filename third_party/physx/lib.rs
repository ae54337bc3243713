// Empty: the package is wanted for what building its dependency leaves behind, libphysx.a.
