# A misspelt class: the closest class of the namespace's library.
d = new 工具.日期时间累
