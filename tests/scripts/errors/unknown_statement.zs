# A misspelt statement word.
prnt "ab"
