# A misspelt namespace: the closest library found in the search folders.
x = new 工具x.文本类
