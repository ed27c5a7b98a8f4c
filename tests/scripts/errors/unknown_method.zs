# A misspelt method: the closest member of the class and its bases.
s = new 工具.文本类
s.文本 = "ab"
print s.取长渡()
