# A misspelt property, being written.
s = new 工具.文本类
s.文笨 = "ab"
