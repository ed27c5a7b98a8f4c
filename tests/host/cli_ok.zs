c = new 测试.计数器
c.值 = 2
print c.加(40)
